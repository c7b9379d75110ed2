// Check box with its exclusion group, list items against host indices, and
// the refresh-only greying of check boxes and buttons.
#include <gtest/gtest.h>

#include "ButtonControlZel.h"
#include "CheckboxControlZel.h"
#include "ControlTestRecords.h"
#include "ListControlZel.h"

using fakehost::Host;

namespace {
using Strings = std::vector<std::string>;
}

TEST(ChoiceControls, CheckboxSetToOneClearsItsGroupOnly) {
    resetHost();
    BoolRecord owner{}, first{}, second{};
    first.Value = 1;
    second.Value = 1;
    ZelExclusionGroup group;
    ASSERT_TRUE(group.Add(41, &first.Value));
    ASSERT_TRUE(group.Add(42, &second.Value));
    CheckboxControlZel box, firstBox;
    box.bind(40, &owner.Value, &group);
    firstBox.bind(41, &first.Value);
    firstBox.Sync();

    box.SetValue(-1.0, 1);
    EXPECT_EQ(owner.Value, 1);
    EXPECT_TRUE(box.value);
    EXPECT_EQ(first.Value, 0);
    EXPECT_EQ(second.Value, 0);
    EXPECT_TRUE(firstBox.value);  // members are not re-synced
    EXPECT_EQ(hostCalls(), (Strings{"sparkControlUpdate(40)", "sparkControlUpdate(41)",
                                    "sparkControlUpdate(42)"}));

    Host::instance().clearCalls();
    first.Value = 1;
    box.SetValue(-1.0, 2);  // on, but not exactly 1: the group stays
    EXPECT_EQ(owner.Value, 2);
    EXPECT_EQ(first.Value, 1);
    long out = 0;
    box.GetValue(0.0, out);
    EXPECT_EQ(out, 1);
    box.SetValue(-1.0, 0);
    box.GetValue(0.0, out);
    EXPECT_EQ(out, 0);
    EXPECT_EQ(hostCalls(), (Strings{"sparkControlUpdate(40)", "sparkControlUpdate(40)"}));
}

TEST(ChoiceControls, CheckboxAndButtonDisableOnlyRefresh) {
    resetHost();
    BoolRecord owner{};
    owner.Value = 3;
    CheckboxControlZel box;
    box.bind(28, &owner.Value);
    box.Disable(false);  // unchanged state, but the byte is still saved
    EXPECT_EQ(box.savedByDisable(), 3);
    EXPECT_TRUE(hostCalls().empty());
    owner.Value = -1;
    box.Disable(true);
    EXPECT_EQ(box.savedByDisable(), -1);  // widened with its sign

    ButtonControlZel button;
    button.bind(21);
    button.Disable(true);
    button.Disable(true);
    button.Hide(true);
    EXPECT_TRUE(button.isDisabled());
    EXPECT_EQ(hostCalls(), (Strings{"sparkControlUpdate(28)", "sparkControlUpdate(21)",
                                    "sparkDisableParameter(1,21)"}));
}

TEST(ChoiceControls, ListCountsFromOneAndShrinksWhenDisabled) {
    resetHost();
    PupRecord record{};
    record.Value = 3;
    record.TitleCount = 5;
    ZelAuxList saved;
    ListControlZel list;
    EXPECT_EQ(list.value, 1);
    list.bind(17, record.field(), &saved);
    list.Sync();
    EXPECT_EQ(list.value, 4);

    list.SetValue(-1.0, 1);
    EXPECT_EQ(record.Value, 0);
    EXPECT_EQ(list.value, 1);
    long item = 0;
    list.GetValue(-1.0, item);
    EXPECT_EQ(item, 1);
    record.Value = 4;  // the user picks the last entry
    list.GetValue(-1.0, item);
    EXPECT_EQ(item, 5);
    EXPECT_EQ(list.value, 5);

    list.Disable(true);
    EXPECT_EQ(record.TitleCount, 1);
    list.Disable(true);
    list.Disable(false);
    EXPECT_EQ(record.TitleCount, 5);
    EXPECT_EQ(hostCalls(), (Strings{"sparkControlUpdate(17)", "sparkControlUpdate(17)",
                                    "sparkControlUpdate(17)"}));
}
