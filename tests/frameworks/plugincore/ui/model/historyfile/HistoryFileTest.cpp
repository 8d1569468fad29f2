// SPDX-License-Identifier: ISC
// Both forms of the file, held against bytes that were written by hand.
#include "frameworks/plugincore/ui/model/historyfile/HistoryFile.h"

#include "frameworks/plugincore/ui/model/historyfile/InvalidHistoryFile.h"
#include "frameworks/qobase/util/DataStreamIO.h"
#include "frameworks/qobase/util/File.h"
#include "restoration/ui/dialog/historyfile/HistoryLogic.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestHistoryDelegate.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using UI::Dialog::DialogHistoryForm;

Util::Bytes FromHex(std::string text)
{
    std::erase(text, ' ');
    Util::Bytes bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        bytes.push_back(static_cast<uint8_t>(std::stoul(text.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

// Magic and version 1; the dialog form goes on with the size of the state, which has 3 bytes.
const std::string FrameworkHead = "5D603B00 01000000 ";
const std::string DialogHead = "112B3A00 01000000 03000000 ";
// Snapshots {AA BB CC, "A"} and {nothing, "\xC3\xA4"}.
const std::string FrameworkSnapshots = "503D0100 0300000000000000 AABBCC 01000000 41"
                                       "503D0100 0000000000000000 02000000 C3A4";
const std::string DialogSnapshots = "503D0100 03000000 AABBCC 01000000 41"
                                    "503D0100 00000000 02000000 C3A4";
// Slot 1 holds snapshot 1, slot 3 holds snapshot 0.
const std::string Slots = "2F450000 01000000 01000000 2F450000 03000000 00000000";
// A slot 4, of which there is none.
const std::string BadSlot = "2F450000 04000000 00000000";

const std::pair<const HistoryFileForm*, std::string> WholeFiles[] = {
    {&FrameworkHistoryForm, FrameworkHead + FrameworkSnapshots + Slots},
    {&DialogHistoryForm, DialogHead + DialogSnapshots + Slots}};

std::vector<std::string> LabelsOf(const HistoryModel& model)
{
    std::vector<std::string> labels;
    for (const Snapshot& snapshot : model.snapshots) {
        labels.push_back(snapshot.label.ToStdString());
    }
    return labels;
}

HistoryModel TwoSnapshots()
{
    HistoryModel model;
    model.snapshots = {{{0xAA, 0xBB, 0xCC}, "A"}, {{}, "\xC3\xA4"}};
    model.slots = {std::nullopt, 1, std::nullopt, 0};
    return model;
}

class HistoryFileTest : public testing::Test {
protected:
    void Store(const Util::Bytes& bytes) const { ASSERT_TRUE(Util::ReplaceWholeFile(path, bytes)); }
    Util::Bytes Stored() const { return *Util::ReadWholeFile(path); }

    // The text of the fault, or empty.
    std::string Load(const HistoryFileForm& form)
    {
        try {
            HistoryFile(form, instance).Load(path, model);
            return "";
        } catch (const Exception::InvalidHistoryFile& fault) {
            return fault.GetMessage().ToStdString();
        } catch (const Util::Exception::DataStreamIO& fault) {
            return fault.GetMessage().ToStdString();
        }
    }

    Support::TemporaryFolder folder;
    const String path = folder / "a.hst";
    Support::TestHistoryDelegate instance;
    HistoryModel model;
};

TEST_F(HistoryFileTest, BothFormsLieInTheFileAsTheyAreDescribed)
{
    for (const auto& [form, hex] : WholeFiles) {
        ASSERT_TRUE(HistoryFile(*form, instance).Save(path, TwoSnapshots()));
        EXPECT_EQ(Stored(), FromHex(hex));
        EXPECT_EQ(Load(*form), "");
        EXPECT_EQ(LabelsOf(model), LabelsOf(TwoSnapshots()));
        EXPECT_EQ(model.snapshots[0].bytes, (Util::Bytes{0xAA, 0xBB, 0xCC}));
        EXPECT_EQ(model.slots, TwoSnapshots().slots);
    }
}

TEST_F(HistoryFileTest, EachFaultEndsInItsOwnWay)
{
    using Labels = std::vector<std::string>;
    const Labels none;
    const Labels framework = {"<Initial State>"};
    const Labels dialog = {"Initial State"};
    const Labels both = {"A", "\xC3\xA4"};
    struct Case {
        std::string hex;
        std::string fault; // how it begins
        const Labels& labels;
    };
    const Case ofFramework[] = {
        {"4D3C2B1A", "Invalid magic number 439041101", none},
        {"5D603B00 00000000" + Slots, "", framework}, // version 0
        {FrameworkHead, "", framework},
        // Lengths of 1000000001 and 2^64 - 1.
        {FrameworkHead + FrameworkSnapshots + "503D0100 01CA9A3B00000000", "", framework},
        {FrameworkHead + "503D0100 FFFFFFFFFFFFFFFF", "", framework},
        {FrameworkHead + FrameworkSnapshots + "04000000 503D0100", "", framework}, // unknown tag
    };
    const Case ofDialog[] = {
        {FrameworkHead, "Invalid magic number 3891293", none},
        {"112B3A00 02000000 09000000", "", dialog}, // version 2
        {"112B3A00 01000000 04000000", "Invalid total param size 4", none},
        {DialogHead, "", dialog},
        {DialogHead + Slots, "", dialog},
        // A length of 64 MiB + 1, one of 64 MiB with nothing there, and a label of 200001 bytes.
        {DialogHead + "503D0100 01000004", "", dialog},
        {DialogHead + "503D0100 00000004 00", "Can't extract", none},
        {DialogHead + "503D0100 00000000 410D0300", "Improbable string length 200001", none},
        {DialogHead + DialogSnapshots + BadSlot + "00000000", "", both},
    };
    const auto expectEnd = [&](const HistoryFileForm& form, const Case& entry) {
        SCOPED_TRACE(entry.hex);
        model = TwoSnapshots();
        Store(FromHex(entry.hex));
        const std::string fault = Load(form);
        EXPECT_EQ(fault.substr(0, entry.fault.size()), entry.fault);
        EXPECT_EQ(fault.empty(), entry.fault.empty()) << fault;
        EXPECT_EQ(LabelsOf(model), entry.labels);
        EXPECT_EQ(Stored(), FromHex(entry.hex));
    };
    for (const Case& entry : ofFramework) {
        expectEnd(FrameworkHistoryForm, entry);
    }
    for (const Case& entry : ofDialog) {
        expectEnd(DialogHistoryForm, entry);
    }
}

TEST_F(HistoryFileTest, AMissingFileIsTheStateOfNowButNoFileAtAllIsAFault)
{
    model = TwoSnapshots();
    EXPECT_EQ(Load(FrameworkHistoryForm), "");
    ASSERT_EQ(model.snapshots.size(), 1U);
    EXPECT_EQ(model.snapshots[0].bytes, instance.state);
    EXPECT_FALSE(model.slots[1].has_value());

    model = TwoSnapshots();
    HistoryFile(FrameworkHistoryForm, instance).MakeInitialState(model);
    EXPECT_EQ(model.slots, TwoSnapshots().slots);

    std::filesystem::create_directory(path.c_str());
    EXPECT_FALSE(Load(FrameworkHistoryForm).empty());
    EXPECT_TRUE(model.snapshots.empty());
}

TEST_F(HistoryFileTest, ASaveReplacesTheFileOrSaysThatItFailed)
{
    Store({1});
    std::filesystem::create_hard_link(path.c_str(), folder / "former");
    const HistoryFile file(FrameworkHistoryForm, instance);
    EXPECT_FALSE(file.Save(path + "/b.hst", TwoSnapshots()));
    EXPECT_EQ(Stored(), Util::Bytes{1});
    EXPECT_TRUE(file.Save(path, TwoSnapshots()));
    EXPECT_EQ(*Util::ReadWholeFile(folder / "former"), Util::Bytes{1}) << "written in place";
}

} // namespace
