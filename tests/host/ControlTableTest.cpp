// Every exported control record, read by name from the loaded plug-in and
// compared with the control table as the user sees it.
#include <iterator>
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
    {"SparkUserFloat93", "Amplitude Import: %.1f", 0, -1000, 1000, 0.001f},
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

const std::pair<const char*, const char*> kButtons[] = {
    {"SparkPush21", "KillLines   "}, {"SparkPush22", "AutoFind   "},
    {"SparkPush27", "Reset   "},     {"SparkPush31", "Help"},
    {"SparkPush32", "Reset"},        {"SparkPush114", "Import Amplitude File"}};

}  // namespace

using ControlTable = LoadedPlugin;

TEST_F(ControlTable, EveryRecordHasItsTitleDefaultRangeAndCallback) {
    std::set<std::string> exported;
    for (const auto& record : plugin.records()) exported.insert(record.symbol);
    std::set<std::string> expected = {"SparkBoolean28", "SparkBoolean34"};
    for (const auto& row : kFloats) expected.insert(row.symbol);
    for (const auto& row : kMenus) expected.insert(row.symbol);
    for (const auto& row : kButtons) expected.insert(row.first);
    EXPECT_EQ(exported, expected);

    std::set<SparkCallbackFunc> callbacks;
    for (const FloatRow& row : kFloats) {
        // A user float is a float record followed by one word.
        auto* r = plugin.record<SparkFloatStruct>(row.symbol);
        EXPECT_STREQ(r->Title, row.title);
        EXPECT_EQ(std::vector<float>({r->Value, r->Min, r->Max, r->Increment}),
                  std::vector<float>({row.value, row.min, row.max, row.increment}))
            << row.symbol;
        EXPECT_EQ(r->Flags, 0u);
        callbacks.insert(r->Callback);
    }
    EXPECT_EQ(plugin.record<SparkUserFloatStruct>("SparkUserFloat93")->Reserved, 0);
    EXPECT_EQ(plugin.record<SparkUserFloatStruct>("SparkUserFloat93")->Callback, nullptr);
    // Centre X and Y share one callback; the others each have their own.
    EXPECT_EQ(plugin.record<SparkFloatStruct>("SparkFloat13")->Callback,
              plugin.record<SparkFloatStruct>("SparkFloat14")->Callback);
    EXPECT_EQ(callbacks.size(), std::size(kFloats) - 1);

    for (const MenuRow& row : kMenus) {
        auto* r = plugin.record<SparkPupStruct>(row.symbol);
        EXPECT_EQ(r->Value, row.value) << row.symbol;
        EXPECT_NE(r->Callback, nullptr);
        ASSERT_EQ(r->TitleCount, static_cast<int>(row.titles.size())) << row.symbol;
        std::vector<std::string> titles(r->Titles, r->Titles + r->TitleCount);
        EXPECT_EQ(titles, row.titles);
        for (int i = r->TitleCount; i < SPARK_MAX_PUP_TITLES; ++i) EXPECT_EQ(r->Titles[i], nullptr);
    }
    for (const auto& [symbol, title] : kButtons) {
        EXPECT_STREQ(plugin.record<SparkPushStruct>(symbol)->Title, title);
        EXPECT_NE(plugin.record<SparkPushStruct>(symbol)->Callback, nullptr) << symbol;
    }
    auto* clearOverlay = plugin.record<SparkBooleanStruct>("SparkBoolean28");
    auto* autoPreview = plugin.record<SparkBooleanStruct>("SparkBoolean34");
    EXPECT_EQ(std::string(clearOverlay->Title) + "=" + std::to_string(clearOverlay->Value),
              "Clear Overlay=0");
    EXPECT_EQ(std::string(autoPreview->Title) + "=" + std::to_string(autoPreview->Value),
              "Auto Preview=1");
    EXPECT_NE(clearOverlay->Callback, nullptr);
    EXPECT_NE(autoPreview->Callback, nullptr);
}
