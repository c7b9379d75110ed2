// Every exported control record, read by name from the loaded plug-in and
// compared with the control table as the user sees it.
#include <cstring>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "host/LoadedPlugin.h"

namespace {

struct FloatRow {
    const char* symbol;
    const char* title;
    float value, min, max, increment;
};

const FloatRow kFloats[] = {
    {"SparkFloat6", "Radial1: %.3f", 0, -1, 3, 0.001f},
    {"SparkFloat7", "Radial2: %.3f", 0, -1, 3, 0.001f},
    {"SparkFloat8", "XCurvature: %.3f", 0, -1, 1, 0.001f},
    {"SparkFloat9", "YCurvature: %.3f", 0, -1, 1, 0.001f},
    {"SparkFloat13", "Centre X: %.2f", 50, 0, 100, 0.05f},
    {"SparkFloat14", "Centre Y: %.2f", 50, 0, 100, 0.05f},
    {"SparkFloat16", "Squeeze: %.3f", 1, 0.5f, 5, 0.001f},
    {"SparkFloat18", "Magnify: %.3f", 1, 0.2f, 5, 0.001f},
    {"SparkFloat27", "Blend: %.2f", 0, 0, 100, 0.1f},
};

struct MenuRow {
    const char* symbol;
    int value;
    std::vector<std::string> titles;
};

const MenuRow kMenus[] = {
    {"SparkPup17",
     3,
     {"Sampling: Nearest  ", "Sampling: Linear  ", "Sampling: Cubic  ", "Sampling: SharpCubic  ",
      "Sampling: BSpline  "}},
    {"SparkPup20",
     0,
     {"LineEdit: No Action  ", "LineEdit: Add Line  ", "LineEdit: Delete Line  ",
      "LineEdit: Move Point  ", "LineEdit: Delete Point  ", "LineEdit: Insert Point  "}},
    {"SparkPup23", 0, {"Mode: Remove  ", "Mode: Add  ", "Mode: Auto Remove  "}},
    {"SparkPup24", 0, {"View: Result  ", "View: Input  "}},
    {"SparkPup33", 0, {"FULL", "1/2", "1/3", "1/4", "1/6", "1/8", "1/12", "1/16", "1/32"}},
};

const std::map<std::string, std::string> kButtons = {
    {"SparkPush21", "KillLines   "}, {"SparkPush22", "AutoFind   "},
    {"SparkPush27", "Reset   "},     {"SparkPush31", "Help"},
    {"SparkPush32", "Reset"},        {"SparkPush114", "Import Amplitude File"},
};

}  // namespace

using ControlTable = LoadedPlugin;

TEST_F(ControlTable, EveryRecordHasItsTitleDefaultRangeAndCallback) {
    std::set<std::string> exported;
    for (const auto& record : plugin.records()) exported.insert(record.symbol);
    const std::set<std::string> expected = {
        "SparkFloat6",    "SparkFloat7",  "SparkFloat8",     "SparkFloat9",  "SparkFloat13",
        "SparkFloat14",   "SparkFloat16", "SparkPup17",      "SparkFloat18", "SparkPup20",
        "SparkPush21",    "SparkPush22",  "SparkPup23",      "SparkPup24",   "SparkPush27",
        "SparkFloat27",   "SparkPush31",  "SparkPush32",     "SparkPup33",   "SparkBoolean28",
        "SparkBoolean34", "SparkPush114", "SparkUserFloat93"};
    EXPECT_EQ(exported, expected);

    std::set<SparkCallbackFunc> callbacks;
    for (const FloatRow& row : kFloats) {
        auto* r = plugin.record<SparkFloatStruct>(row.symbol);
        ASSERT_NE(r, nullptr) << row.symbol;
        EXPECT_STREQ(r->Title, row.title);
        EXPECT_EQ(r->Value, row.value) << row.symbol;
        EXPECT_EQ(r->Min, row.min) << row.symbol;
        EXPECT_EQ(r->Max, row.max) << row.symbol;
        EXPECT_EQ(r->Increment, row.increment) << row.symbol;
        EXPECT_EQ(r->Flags, 0u);
        EXPECT_NE(r->Callback, nullptr) << row.symbol;
        callbacks.insert(r->Callback);
    }
    // Centre X and Centre Y share one callback; every other float has its own.
    EXPECT_EQ(plugin.record<SparkFloatStruct>("SparkFloat13")->Callback,
              plugin.record<SparkFloatStruct>("SparkFloat14")->Callback);
    EXPECT_EQ(callbacks.size(), std::size(kFloats) - 1);

    for (const MenuRow& row : kMenus) {
        auto* r = plugin.record<SparkPupStruct>(row.symbol);
        ASSERT_NE(r, nullptr) << row.symbol;
        EXPECT_EQ(r->Value, row.value) << row.symbol;
        ASSERT_EQ(r->TitleCount, static_cast<int>(row.titles.size())) << row.symbol;
        for (int i = 0; i < SPARK_MAX_PUP_TITLES; ++i) {
            if (i < r->TitleCount) {
                EXPECT_EQ(std::string(r->Titles[i]), row.titles[i]);
            } else {
                EXPECT_EQ(r->Titles[i], nullptr) << row.symbol << " entry " << i;
            }
        }
        EXPECT_NE(r->Callback, nullptr);
    }

    for (const auto& [symbol, title] : kButtons) {
        auto* r = plugin.record<SparkPushStruct>(symbol);
        ASSERT_NE(r, nullptr) << symbol;
        EXPECT_EQ(std::string(r->Title), title);
        EXPECT_NE(r->Callback, nullptr) << symbol;
    }

    auto* clearOverlay = plugin.record<SparkBooleanStruct>("SparkBoolean28");
    auto* autoPreview = plugin.record<SparkBooleanStruct>("SparkBoolean34");
    EXPECT_EQ(clearOverlay->Value, 0);
    EXPECT_STREQ(clearOverlay->Title, "Clear Overlay");
    EXPECT_EQ(autoPreview->Value, 1);
    EXPECT_STREQ(autoPreview->Title, "Auto Preview");
    EXPECT_NE(clearOverlay->Callback, nullptr);
    EXPECT_NE(autoPreview->Callback, nullptr);

    auto* amplitude = plugin.record<SparkUserFloatStruct>("SparkUserFloat93");
    EXPECT_STREQ(amplitude->Title, "Amplitude Import: %.1f");
    EXPECT_EQ(amplitude->Value, 0.0f);
    EXPECT_EQ(amplitude->Min, -1000.0f);
    EXPECT_EQ(amplitude->Max, 1000.0f);
    EXPECT_EQ(amplitude->Increment, 0.001f);
    EXPECT_EQ(amplitude->Flags, 0u);
    EXPECT_EQ(amplitude->Callback, nullptr);
    EXPECT_EQ(amplitude->Reserved, 0);
}
