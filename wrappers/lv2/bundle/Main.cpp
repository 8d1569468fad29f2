// SPDX-License-Identifier: ISC
// Writes the bundle's documents from the module's description of itself: run once at build time.
#include "wrappers/common/Instance.h"
#include "wrappers/common/SilentListener.h"
#include "wrappers/lv2/bundle/PluginDocument.h"
#include "wrappers/lv2/bundle/PresetDocument.h"
#include "wrappers/lv2/bundle/Turtle.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace {

using Wrapper::Side;

void Print(const std::string& text)
{
    std::fprintf(stderr, "%s\n", text.c_str());
}

Lv2::PresetValues ReadValues(Wrapper::Instance& instance, const Wrapper::Preset& preset)
{
    Lv2::PresetValues result = {preset.name, preset.comment, {}, instance.SaveState()};
    for (uint32_t i = 0; i < instance.GetParameters().size(); ++i) {
        result.values.push_back(
            instance.GetParameters()[i].FromNormalised(instance.GetParameter(Side::UI, i)));
    }
    return result;
}

// The product's own. What the user of the building machine has in store is nobody else's, and the
// one built in would be "Default" by another name.
std::vector<Lv2::PresetValues> ReadPresets(Wrapper::Instance& instance)
{
    std::vector<Lv2::PresetValues> presets;
    for (const Wrapper::Preset& preset : instance.ListPresets()) {
        if (preset.group != Wrapper::PresetGroup::Factory) {
            continue;
        }
        if (!instance.ApplyPreset(preset.name)) {
            throw std::runtime_error("a preset of the product can't be applied: " + preset.name);
        }
        presets.push_back(ReadValues(instance, preset));
    }
    return presets;
}

void Write(const std::filesystem::path& file, const std::string& text)
{
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream) {
        throw std::runtime_error("can't write " + file.string());
    }
}

std::string ManifestEntry(const Lv2::Variant& variant, const std::string& binary)
{
    return Lv2::TurtleUri(variant.uri) + "\n\ta lv2:Plugin ;\n\tlv2:binary " +
           Lv2::TurtleUri(binary) + " ;\n\trdfs:seeAlso " +
           Lv2::TurtleUri(std::string(variant.symbol) + ".ttl") + " .\n\n";
}

void WriteBundle(const std::filesystem::path& folder, const std::string& binary)
{
    const auto module = Wrapper::Module::Load(Print);
    Wrapper::SilentListener listener;
    const Wrapper::Setup setup = {Wrapper::Format::Other, Wrapper::Use::Files, 48000.0, 2};
    const auto instance =
        module != nullptr ? Wrapper::Instance::Create(module, setup, listener, Print) : nullptr;
    if (instance == nullptr) {
        throw std::runtime_error("no module to describe");
    }
    const Lv2::Description description = {
        module->GetProduct(), instance->GetParameters(), instance->GetBypassIndex()};
    const std::vector<Lv2::PresetValues> presets = ReadPresets(*instance);

    std::string manifest = Lv2::TurtlePrefixes();
    for (const Lv2::Variant& variant : Lv2::Variants) {
        manifest += ManifestEntry(variant, binary) + Lv2::PresetList(presets, variant);
        const std::string symbol = variant.symbol;
        Write(folder / (symbol + ".ttl"), Lv2::PluginDocument(description, variant));
        Write(folder / (symbol + "-presets.ttl"),
              Lv2::PresetDocument(description, presets, variant));
    }
    Write(folder / "manifest.ttl", manifest);
}

} // namespace

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 3) {
        Print("usage: puffguard-lv2-bundle FOLDER BINARY");
        return 1;
    }
    try {
        WriteBundle(arguments[1], arguments[2]);
        return 0;
    } catch (const std::exception& fault) {
        Print(fault.what());
        return 1;
    }
}
