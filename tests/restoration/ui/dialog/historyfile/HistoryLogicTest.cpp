// SPDX-License-Identifier: ISC
// What a history dialog does with its list, slots and file.
#include "restoration/ui/dialog/historyfile/HistoryLogic.h"

#include "frameworks/qobase/util/File.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestHistoryDelegate.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <utility>

#include <sys/stat.h>

namespace {

using Labels = std::vector<std::string>;
using UI::Dialog::HistoryLogic;

// Writes down what it is told: rows as "rows a b c", the rest by name.
class RecordingView final : public UI::Dialog::HistoryView {
public:
    void SetRows(const std::vector<String>& labels) override
    {
        calls.emplace_back("rows");
        for (const String& label : labels) {
            calls.back().append(" ").append(label.View());
        }
    }
    void SelectRow(uint32_t row) override { calls.push_back("select " + std::to_string(row)); }
    void ScrollToRow(uint32_t row) override { calls.push_back("scroll " + std::to_string(row)); }
    Labels Take() { return std::exchange(calls, {}); }

private:
    Labels calls;
};

class HistoryLogicTest : public testing::Test {
protected:
    HistoryLogicTest()
    {
        instance.path = folder / "own.hst";
        Begin();
    }
    // As another instance would, later, with the same files.
    void Begin()
    {
        logic = std::make_unique<HistoryLogic>(instance, "Test", [this] { return depthIndex; });
    }
    void Add(uint8_t value)
    {
        instance.state[0] = value;
        ASSERT_TRUE(logic->AddSnapshot(String("%1").arg(uint32_t{value})));
    }
    void Idle(int ticks)
    {
        for (int tick = 0; tick < ticks; ++tick) {
            logic->onIdle();
        }
    }
    Labels Rows() const
    {
        Labels labels;
        for (const Snapshot& snapshot : logic->GetModel().snapshots) {
            labels.push_back(snapshot.label.ToStdString());
        }
        return labels;
    }
    bool HasFile(const std::string& name) const { return std::filesystem::exists(folder / name); }

    Support::TemporaryFolder folder;
    Support::TestHistoryDelegate instance;
    uint32_t depthIndex = 1;
    std::unique_ptr<HistoryLogic> logic;
};

TEST_F(HistoryLogicTest, TheListIsRefilledThenSelectedThenScrolled)
{
    RecordingView view;
    logic->SetView(&view);
    EXPECT_EQ(view.Take(), (Labels{"rows Initial State", "select 0", "scroll 0"}));
    Add(5);
    EXPECT_EQ(view.Take(), (Labels{"rows Initial State 5", "select 1", "scroll 1"}));
    logic->SetFollow(false);
    Add(6);
    EXPECT_EQ(view.Take(), (Labels{"rows Initial State 5 6", "select 2"}));
    EXPECT_TRUE(logic->SelectRow(1));
    EXPECT_FALSE(logic->SelectRow(3)); // the list falls back to the row that counts
    EXPECT_EQ(view.Take(), (Labels{"select 1", "select 1"}));
    logic->SetView(nullptr);
    logic->SetView(&view); // a dialog that opens again finds the row where the instance stands
    EXPECT_EQ(view.Take(), (Labels{"rows Initial State 5 6", "select 1"}));
}

TEST_F(HistoryLogicTest, SteppingBringsStatesBackAndAddsNothing)
{
    for (uint8_t value = 5; value < 8; ++value) {
        Add(value);
    }
    EXPECT_TRUE(logic->StepBack());
    EXPECT_TRUE(logic->StepBack());
    EXPECT_EQ(instance.state[0], 5);
    EXPECT_TRUE(logic->StepForward());
    EXPECT_EQ(instance.state[0], 6);
    EXPECT_EQ(instance.changes, 3);
    EXPECT_EQ(Rows(), (Labels{"Initial State", "5", "6", "7"}));
    EXPECT_TRUE(logic->StepForward());
    EXPECT_FALSE(logic->StepForward());
    EXPECT_FALSE(logic->Restore(std::nullopt));
    EXPECT_FALSE(logic->Restore(4));
    EXPECT_EQ(instance.changes, 4);
    EXPECT_EQ(instance.state[0], 7);
}

TEST_F(HistoryLogicTest, ASnapshotAfterAStepBackDropsTheLaterOnesAndTheirSlots)
{
    for (uint8_t value = 5; value < 8; ++value) {
        Add(value);
        ASSERT_TRUE(logic->StoreSlot(value - 5U)); // slots 0, 1, 2 hold rows 1, 2, 3
    }
    ASSERT_TRUE(logic->SelectRow(2));
    Add(8);
    EXPECT_EQ(Rows(), (Labels{"Initial State", "5", "6", "8"}));
    EXPECT_TRUE(logic->RecallSlot(1));
    EXPECT_EQ(instance.state[0], 6);
    EXPECT_FALSE(logic->RecallSlot(2));
    EXPECT_FALSE(logic->RecallSlot(4));
    EXPECT_FALSE(logic->StoreSlot(4));
    EXPECT_EQ(logic->GetSelectedRow(), 3U); // recalling a slot leaves the list alone
}

TEST_F(HistoryLogicTest, AFullListLosesItsOldestAndSlotsFollow)
{
    const uint32_t limits[] = {50, 100, 500};
    for (depthIndex = 0; depthIndex < 3; ++depthIndex) {
        SCOPED_TRACE(limits[depthIndex]);
        std::filesystem::remove(folder / "QoTest.hst");
        Begin();
        logic->onUserBegins();
        ASSERT_TRUE(logic->StoreSlot(0)); // the initial state
        Add(1);
        ASSERT_TRUE(logic->StoreSlot(2));
        while (Rows().size() < limits[depthIndex]) {
            Add(2);
        }
        EXPECT_EQ(logic->GetModel().slots[0], 0U);
        Add(3);
        EXPECT_EQ(Rows().size(), limits[depthIndex]);
        EXPECT_EQ(Rows().front(), "1");
        EXPECT_FALSE(logic->GetModel().slots[0].has_value());
        EXPECT_EQ(logic->GetModel().slots[2], 0U);
    }
    depthIndex = 0; // a smaller depth counts from the next snapshot on
    Add(4);
    EXPECT_EQ(Rows().size(), 50U);
    depthIndex = 3; // no limit
    for (int i = 0; i < 550; ++i) {
        Add(1);
    }
    EXPECT_EQ(Rows().size(), 600U);
}

TEST_F(HistoryLogicTest, AStateThatCannotBeHadChangesNothing)
{
    Add(5);
    Add(6);
    ASSERT_TRUE(logic->StepBack());
    instance.refusals = 1; // as when a value changes between the two questions
    EXPECT_TRUE(logic->AddSnapshot("second try"));
    ASSERT_TRUE(logic->StepBack());
    instance.refusals = 1000;
    EXPECT_FALSE(logic->AddSnapshot("never"));
    EXPECT_EQ(Rows(), (Labels{"Initial State", "5", "second try"}));
}

TEST_F(HistoryLogicTest, TheListOutlivesTheInstance)
{
    Add(5);
    ASSERT_TRUE(logic->StoreSlot(3));
    ASSERT_TRUE(logic->AddSnapshot(std::string(200001, 'x'))); // more than a file can hold
    logic->Flush();
    instance.state.resize(4); // changed since, and no snapshot: the file goes with the state
    logic->Flush();
    Begin();
    logic->onUserBegins();
    EXPECT_EQ(Rows(), (Labels{"Initial State", "5", std::string(200000, 'x')}));
    EXPECT_TRUE(logic->RecallSlot(3));
    EXPECT_EQ(instance.state[0], 5);
}

TEST_F(HistoryLogicTest, AnInstanceWithoutSnapshotsLeavesTheFileToAnother)
{
    Support::TestHistoryDelegate other;
    other.path = instance.path;
    for (const bool isThereBefore : {false, true}) {
        if (isThereBefore) {
            logic->Flush();
        }
        other.state = instance.state;
        HistoryLogic idle(other, "Test", [] { return 1U; });
        idle.onUserBegins();
        Add(5);
        logic->Flush();
        const Util::Bytes written = *Util::ReadWholeFile(folder / "QoTest.hst");
        other.state.push_back(9); // moved by its host, not by its user
        idle.Flush();
        EXPECT_EQ(*Util::ReadWholeFile(folder / "QoTest.hst"), written);
        EXPECT_FALSE(HasFile("QoTest.hst.bak"));
    }
    // One that isn't its own, and that it can't use, neither.
    HistoryLogic idle(other, "Test", [] { return 1U; });
    idle.onUserBegins();
    other.state.push_back(9);
    idle.Flush();
    EXPECT_FALSE(HasFile("QoTest.hst.bak"));
}

TEST_F(HistoryLogicTest, AFileThatCannotBeUsedIsSetAsideAtTheNextSave)
{
    Add(5);
    logic->Flush();
    const Util::Bytes whole = *Util::ReadWholeFile(folder / "QoTest.hst");
    Util::Bytes cut(whole.begin(), whole.end() - 1);
    std::string aside = folder / "QoTest.hst.bak";
    for (const Util::Bytes& stored : {whole, cut, Util::Bytes{1, 2, 3, 4}}) {
        ASSERT_TRUE(Util::ReplaceWholeFile(folder / "QoTest.hst", stored));
        instance.state.resize(stored == cut ? 3 : 4); // of another size, but for the cut one
        Begin();
        logic->onUserBegins();
        EXPECT_EQ(Rows(), Labels{"Initial State"});
        EXPECT_EQ(*Util::ReadWholeFile(folder / "QoTest.hst"), stored);
        Add(6);
        logic->Flush();
        ASSERT_TRUE(std::filesystem::exists(aside));
        EXPECT_EQ(*Util::ReadWholeFile(aside), stored);
        aside = folder / (stored == whole ? "QoTest.hst.bak-2" : "QoTest.hst.bak-3");
        Begin();
        logic->onUserBegins();
        EXPECT_EQ(Rows(), (Labels{"Initial State", "6"}));
    }
}

TEST_F(HistoryLogicTest, SoundFilesOfOtherStatesTakeOnePlaceAside)
{
    for (uint8_t size = 3; size < 8; ++size) {
        instance.state.resize(size);
        Begin();
        Add(size);
        logic->Flush();
    }
    EXPECT_FALSE(HasFile("QoTest.hst.bak-2"));
    const auto aside = logic->ReadFile(folder / "QoTest.hst.bak");
    ASSERT_TRUE(aside);
    EXPECT_EQ(aside->snapshots.back().label, "6");
}

TEST_F(HistoryLogicTest, OnlyTheFileThatFailedIsSetAside)
{
    ASSERT_TRUE(Util::ReplaceWholeFile(folder / "QoTest.hst", Util::Bytes{1, 2, 3, 4}));
    logic->onUserBegins();
    HistoryLogic other(instance, "Test", [] { return 1U; });
    ASSERT_TRUE(other.AddSnapshot("other"));
    other.Flush();
    Add(5);
    logic->Flush();
    EXPECT_EQ(Util::ReadWholeFile(folder / "QoTest.hst.bak")->size(), 4U);
    EXPECT_FALSE(HasFile("QoTest.hst.bak-2"));
}

TEST_F(HistoryLogicTest, WhatIsNoFileIsNeitherReadNorLost)
{
    const std::string path = folder / "QoTest.hst";
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"bak", [&] { ASSERT_EQ(mkfifo(path.c_str(), 0600), 0); }},
        {"bak-2", [&] { std::filesystem::create_symlink("QoTest.hst", path); }},
        {"bak-3", [&] { std::filesystem::create_directory(path); }}};
    for (const auto& [aside, make] : cases) {
        make();
        const auto type = std::filesystem::symlink_status(path).type();
        Begin();
        Add(5);
        logic->Flush();
        EXPECT_EQ(std::filesystem::symlink_status(path + "." + aside).type(), type) << aside;
        EXPECT_TRUE(std::filesystem::is_regular_file(path)) << aside;
        std::filesystem::remove(path);
    }
    // What can't even be looked at may be a good file again later.
    std::filesystem::create_symlink("QoTest.hst", path);
    Begin();
    logic->onUserBegins();
    std::filesystem::remove(path);
    ASSERT_TRUE(Util::ReplaceWholeFile(path, Util::Bytes{1}));
    Add(5);
    logic->Flush();
    ASSERT_TRUE(HasFile("QoTest.hst.bak-4"));
    EXPECT_EQ(*Util::ReadWholeFile(path + ".bak-4"), Util::Bytes{1});
}

TEST_F(HistoryLogicTest, AFileThatMemoryDidNotSufficeForIsKept)
{
    Add(5);
    logic->Flush();
    const Util::Bytes whole = *Util::ReadWholeFile(folder / "QoTest.hst");
    Begin();
    instance.failures = 1;
    EXPECT_THROW(logic->onUserBegins(), std::bad_alloc);
    Add(6);
    logic->Flush();
    ASSERT_TRUE(HasFile("QoTest.hst.bak"));
    EXPECT_EQ(*Util::ReadWholeFile(folder / "QoTest.hst.bak"), whole);
}

TEST_F(HistoryLogicTest, AResetBeginsAnew)
{
    Add(5);
    Add(6);
    ASSERT_TRUE(logic->StoreSlot(1)); // row 2
    logic->Flush();
    ASSERT_TRUE(logic->Reset());
    EXPECT_FALSE(HasFile("QoTest.hst"));
    EXPECT_EQ(Rows(), Labels{"Initial State"});
    EXPECT_FALSE(logic->RecallSlot(1));
    Add(7);
    Add(8);
    EXPECT_FALSE(logic->RecallSlot(1)); // row 2 is there again, but isn't what was stored
}

TEST_F(HistoryLogicTest, TheFileIsWrittenOnceTheStateRests)
{
    Add(5);
    Idle(19);
    logic->onStateChanged();
    logic->onIdle();
    EXPECT_FALSE(HasFile("QoTest.hst"));
    Idle(19);
    EXPECT_TRUE(HasFile("QoTest.hst"));
    EXPECT_FALSE(HasFile("own.hst"));
}

TEST_F(HistoryLogicTest, AStateThatNeverRestsKeepsTheFileOffForHalfAMinute)
{
    Add(5);
    for (int tick = 1; tick <= 300; ++tick) {
        EXPECT_FALSE(HasFile("QoTest.hst")) << tick;
        if (tick == 200) {
            Add(6); // the first one's time counts
        }
        logic->onStateChanged();
        logic->onIdle();
    }
    EXPECT_TRUE(HasFile("QoTest.hst"));
}

TEST_F(HistoryLogicTest, ASaveThatFailedIsTriedAgainAtTheSamePace)
{
    instance.path = folder / "none/own.hst";
    Begin();
    Add(5);
    Idle(20);
    std::filesystem::create_directory(folder / "none");
    for (int tick = 0; tick < 20; ++tick) {
        EXPECT_FALSE(HasFile("none/QoTest.hst")) << tick;
        logic->onIdle();
    }
    EXPECT_TRUE(HasFile("none/QoTest.hst"));
}

} // namespace
