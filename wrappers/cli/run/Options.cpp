// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/Options.h"

#include "restoration/dsp/autorepair/KeepRule.h"
#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/run/OptionChecks.h"
#include "wrappers/cli/text/Text.h"
#include "wrappers/cli/text/Version.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <charconv>
#include <cmath>
#include <span>
#include <thread>

namespace Cli {

namespace {

constexpr const char* ExampleText = R"(Examples:
  puffguard talk.wav                        repairs into talk.puffguard.wav
  puffguard talk.wav --auto                 finds the pops by itself, leaves the rest bit for bit
  puffguard talk.wav --auto --dry-run --labels pops.txt
                                            look through its pops in Audacity ...
  puffguard talk.wav --repair-labels pops.txt
                                            ... and repair those that are left
  puffguard talk.wav --region 1:02.5-1:02.9,20-150
                                            the low end of one word, and nothing else
  puffguard talk.wav --regions labels.txt   what a label track of Audacity names
  puffguard talk.wav -o clean.flac          another name and container
  puffguard *.wav --output-dir clean        many files, all cores
  puffguard -r archive --in-place           every recording below a folder
  puffguard talk.wav --difference           hear what is taken away
  puffguard talk.wav --dry-run --plot p.png --events e.json
                                            look before you repair
  puffguard talk.wav --strength 8 --upper-frequency 300
                                            stronger, and higher up
  puffguard talk.wav --preset Strong --strength 8
                                            a preset, but for one control
  puffguard --preset Gentle --upper-frequency 300 --save-preset mine.xml
                                            a preset of your own
  sox in.wav -t wav - | puffguard - -o - | sox -t wav - out.wav
                                            in a pipe
  puffguard - -o - --raw s16,48000,2        samples without a head

Exit code: 0 all files done, 1 some file failed, 2 the command line is not valid.)";

/// Option values as they were typed; what they mean is worked out afterwards, so that one place
/// words all complaints.
struct Typed {
    ForEachControl<std::string> controls;
    std::string strictness;
    std::vector<std::string> regions;
    std::string fade;
    std::string block;
    std::string jobs;
    std::string container;
    std::string subtype;
    std::string raw;
    bool force = false;
};

template <typename Number>
Number ParseNumber(const std::string& text, const char* option, Number least, Number most)
{
    Number value = {};
    const char* end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, value);
    // Written so that a NaN fails too.
    const bool isInside = value >= least && value <= most;
    if (failure != std::errc{} || stop != end || !isInside) {
        throw UsageError(fmt::format("{} {} is outside {} to {}", option, text, least, most));
    }
    return value;
}

std::optional<int> ParseName(const std::string& name,
                             const char* option,
                             std::optional<int> found,
                             const std::vector<std::string>& known)
{
    if (name.empty() || found) {
        return name.empty() ? std::nullopt : found;
    }
    const std::string nearest = NearestWord(LowerCase(name), known);
    throw UsageError(fmt::format("{} \"{}\" is none of {}{}",
                                 option,
                                 Printable(name),
                                 fmt::join(known, ", "),
                                 nearest.empty() ? "" : "; did you mean " + nearest + "?"));
}

void AddFileOptions(CLI::App& app, Options& options, Typed& typed)
{
    app.option_defaults()->group("Results");
    app.add_option("INPUT", options.inputs, "Recordings, folders with --recursive, or - for stdin")
        ->type_name("");
    app.add_option("-o,--output", options.output, "Write the one result here; - is stdout")
        ->type_name("FILE");
    app.add_option("-O,--output-dir", options.outputDirectory, "Write the results into this folder")
        ->type_name("DIR");
    app.add_flag("--in-place", options.isInPlace, "Put each result in its input's place");
    app.add_flag("-r,--recursive", options.isRecursive, "Take the recordings inside folders");
    app.add_flag("-f,--force", typed.force, "Overwrite what is there already; ask nothing");
    app.add_option("--format", typed.container, "Container of the result: wav, flac, aiff, ...")
        ->type_name("NAME");
    app.add_option("--subtype", typed.subtype, "Sample format: pcm_16, pcm_24, float, ...")
        ->type_name("NAME");
    app.add_option("--raw", typed.raw, "- carries bare samples, such as s16,48000,2")
        ->type_name("FORMAT,RATE,CHANNELS");
    app.add_flag("--dither", options.hasDither, "Dither integer results (triangular density)");
}

void AddControlOptions(CLI::App& app, Options& options, Typed& typed)
{
    app.option_defaults()->group("Repair");
    for (size_t i = 0; i < ControlTable.size(); ++i) {
        const Control& control = ControlTable[i];
        app.add_option(control.option, typed.controls[i], control.help)
            ->type_name(fmt::format("{}..{}", control.least, control.most));
    }
    app.add_flag("--auto",
                 options.isAutomatic,
                 "Find the pops by itself, with no control, and leave the rest bit for bit");
    app.add_option(
           "--strictness", typed.strictness, "With --auto: above 0 repairs less, below 0 more")
        ->type_name("-3..3");
    app.add_option("--repair-labels",
                   options.repairLabels,
                   "Repair what this label track of Audacity names, and nothing else")
        ->type_name("FILE.txt");
    app.add_option("--region", typed.regions, "Repair this alone, to the bit; may be repeated")
        ->type_name("START-END[,LOW-HIGH]")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->allow_extra_args(false);
    app.add_option("--regions",
                   options.regionFile,
                   "Repair what this label track, or list of --events, names alone")
        ->type_name("FILE");
    app.add_option("--fade", typed.fade, "At the edges of regions (default 10)")->type_name("MS");
    app.add_flag("--bypass", options.controls.bypass, "Pass everything unchanged");
    app.add_flag("--difference", options.wantsDifference, "Write what is taken away");
    app.add_flag("--keep-latency", options.keepsLatency, "Write the raw, late stream");
    app.add_option("--block", typed.block, "Frames that the effect gets at a time (default 4096)")
        ->type_name("FRAMES");
}

void AddSessionOptions(CLI::App& app, SessionOptions& session)
{
    app.option_defaults()->group("Presets and sessions (controls given above win over them)");
    app.add_option("--preset", session.preset, "Start from this preset")->type_name("NAME|FILE");
    app.add_flag("--list-presets", session.listsPresets, "List the presets and exit");
    app.add_option("--save-preset", session.savePreset, "Save the controls as a preset")
        ->type_name("NAME|FILE");
    app.add_option("--comment", session.comment, "Comment in the saved preset")->type_name("TEXT");
    app.add_option("--import-preset", session.importPreset, "Copy it to your presets and exit")
        ->type_name("FILE");
    app.add_option("--remove-preset", session.removePreset, "Remove one of your presets and exit")
        ->type_name("NAME");
    app.add_option("--preset-folder", session.presetFolder, "Keep your presets here and exit")
        ->type_name("DIR|default");
    app.add_option("--history", session.history, "List an undo history and exit")
        ->type_name("FILE.hst");
    app.add_option("--state-in", session.stateIn, "Start from this session, before any preset")
        ->type_name("FILE");
    app.add_option("--state-out", session.stateOut, "Save the session")->type_name("FILE");
    app.add_flag("--print-params", session.printsParams, "List every parameter with its value");
}

void AddReportOptions(CLI::App& app, Options& options, Typed& typed)
{
    app.option_defaults()->group("Reports");
    app.add_flag("-n,--dry-run", options.isDryRun, "Detect and report, write no audio");
    app.add_option("--events", options.events, "Every repair as JSON")->type_name("FILE.json");
    app.add_option("--labels", options.labels, "Prominent plosives as a label track for Audacity")
        ->type_name("FILE.txt");
    app.add_option("--plot", options.plot, "Picture of 0 to 1 kHz before and after")
        ->type_name("FILE.png");
    app.add_option("--report", options.page, "A page to see and hear what was done")
        ->type_name("FILE.html");
    app.option_defaults()->group("Run");
    app.add_option("-j,--jobs", typed.jobs, "Files side by side (default: all cores)")
        ->type_name("N");
    app.add_flag("--json", options.wantsJson, "Summary as JSON on stdout");
    app.add_flag("-q,--quiet", options.isQuiet, "Say nothing but errors");
    app.add_flag("-v,--verbose", options.isVerbose, "Say more");
}

void Interpret(const Typed& typed, Options& options)
{
    for (size_t i = 0; i < ControlTable.size(); ++i) {
        const Control& control = ControlTable[i];
        if (!typed.controls[i].empty()) {
            options.controls.values[i] =
                ParseNumber<double>(typed.controls[i], control.option, control.least, control.most);
        }
    }
    if (!typed.strictness.empty()) {
        constexpr double Most = AutoRepair::GreatestStrictness;
        options.strictness = ParseNumber<double>(typed.strictness, "--strictness", -Most, Most);
    }
    for (const std::string& region : typed.regions) {
        options.regions.push_back(ParseRegion(region));
    }
    if (!typed.fade.empty()) {
        options.fade = ParseNumber<double>(typed.fade, "--fade", 0, GreatestFade);
        options.hasFade = true;
    }
    if (!typed.block.empty()) {
        options.block = ParseNumber<int>(typed.block, "--block", 1, GreatestBlock);
    }
    options.jobs = static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
    if (!typed.jobs.empty()) {
        options.jobs = ParseNumber<int>(typed.jobs, "--jobs", 1, 256);
    }
    options.container =
        ParseName(typed.container, "--format", FindContainer(typed.container), ContainerNames());
    options.subtype =
        ParseName(typed.subtype, "--subtype", FindSubtype(typed.subtype), SubtypeNames());
    if (LowerCase(typed.container) == "opus" && !options.subtype) {
        options.subtype = FindSubtype("opus");
    }
    if (!typed.raw.empty()) {
        options.raw = ParseRawFormat(typed.raw);
    }
    options.overwrite = typed.force ? Overwrite::Allow : Overwrite::Refuse;
}

std::vector<std::string> OptionNames(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

// An empty value is most likely a shell variable that isn't set. The parser would take the next
// word for the value of an option that ends in "=", so that such a one is looked for beforehand.
void RefuseEmptyValues(CLI::App& app, std::span<const char* const> words)
{
    for (std::string_view word : words) {
        if (word == "--") {
            break;
        }
        if (word.starts_with("--") && word.ends_with('=')) {
            word.remove_suffix(1);
            if (app.get_option_no_throw(std::string(word)) != nullptr) {
                throw UsageError(fmt::format("{}: the value is empty", word));
            }
        }
    }
    for (CLI::Option* option : app.get_options()) {
        if (option->get_type_size() > 0 && !option->get_positional()) {
            option->check([](const std::string& value) {
                return value.empty() ? std::string("the value is empty") : std::string();
            });
        }
    }
}

void RefuseUnknown(const CLI::App& app)
{
    std::vector<std::string> unknown = app.remaining();
    std::erase(unknown, "--"); // only marks that inputs follow
    if (unknown.empty()) {
        return;
    }
    const std::string word = unknown.front().substr(0, unknown.front().find('='));
    const std::string nearest = NearestWord(word, OptionNames(app));
    throw UsageError(fmt::format("unknown option {}{}",
                                 Printable(word),
                                 nearest.empty() ? "" : "; did you mean " + nearest + "?"));
}

} // namespace

std::variant<Options, Answer> ParseOptions(int argc, const char* const* argv)
{
    CLI::App app("Finds plosives (the bursts of air of p and b) in speech recordings and takes "
                 "them down.\nWithout -o, --output-dir or --in-place the result of NAME.EXT is "
                 "NAME.puffguard.EXT beside it.",
                 "puffguard");
    app.footer(ExampleText);
    app.allow_extras();
    app.option_defaults()->take_last();
    Options options;
    Typed typed;
    bool wantsVersion = false;
    AddFileOptions(app, options, typed);
    AddControlOptions(app, options, typed);
    AddSessionOptions(app, options.session);
    AddReportOptions(app, options, typed);
    app.add_flag("--version", wantsVersion, "Print the version and exit");
    app.set_help_flag("-h,--help", "Print this help message and exit")->group("Run");
    RefuseEmptyValues(app, {argv, static_cast<size_t>(argc)});
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        return Answer{app.help()};
    } catch (const CLI::ParseError& error) {
        throw UsageError(Printable(error.what()));
    }
    if (wantsVersion) {
        return Answer{fmt::format("puffguard {}\n", GetVersion())};
    }
    RefuseUnknown(app);
    Interpret(typed, options);
    CheckOptions(options);
    return options;
}

} // namespace Cli
