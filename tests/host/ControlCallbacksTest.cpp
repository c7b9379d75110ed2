// The control callbacks through the real plug-in: a fresh frame or only a
// viewer redraw depending on "Auto Preview" and the kind of change, the
// common fields' own callbacks, and the two resets.
#include <string>
#include <vector>

#include "host/LoadedPlugin.h"

namespace {

constexpr int kDrag = 0;
constexpr int kEndOfChange = 1;
constexpr int kWidth = 8;
constexpr int kHeight = 6;

}  // namespace

class ControlCallbacks : public LoadedPlugin {
  protected:
    void SetUp() override {
        LoadedPlugin::SetUp();
        info = host().makeInfo(kWidth, kHeight, 24);
        initialise(info);
        host().setBuffer(2, kWidth, kHeight, 24);
        frame = host().setBuffer(1, kWidth, kHeight, 24).storage.data();
        host().clearCalls();
    }

    unsigned long* change(const std::string& symbol, int arg, char mode = 1) {
        host().clearCalls();
        SparkInfoStruct changed = info;
        changed.Mode = mode;
        return plugin.callback(symbol, arg, changed);
    }
    // Rendered: both buffers fetched and no plain redraw.
    bool rendered() const {
        return host().count("sparkMemGetBuffer") == 2 && host().count("sparkViewingDraw") == 0;
    }
    bool onlyRedrawn() const {
        return host().count("sparkMemGetBuffer") == 0 && host().count("sparkViewingDraw") == 1;
    }
    SparkFloatStruct* floatRecord(const char* s) { return plugin.record<SparkFloatStruct>(s); }
    SparkPupStruct* menu(const char* s) { return plugin.record<SparkPupStruct>(s); }
    SparkBooleanStruct* checkBox(const char* s) { return plugin.record<SparkBooleanStruct>(s); }

    SparkInfoStruct info{};
    unsigned long* frame = nullptr;
};

TEST_F(ControlCallbacks, AutoPreviewRendersAtTheEndOfAChangeAndOtherwiseRedraws) {
    EXPECT_EQ(change("SparkFloat6", kEndOfChange), frame);
    EXPECT_TRUE(rendered());
    EXPECT_EQ(change("SparkFloat6", kDrag), nullptr);
    EXPECT_TRUE(onlyRedrawn());

    checkBox("SparkBoolean34")->Value = 0;
    EXPECT_EQ(change("SparkBoolean34", kEndOfChange), nullptr);
    EXPECT_TRUE(host().called("sparkControlUpdate(34)"));
    EXPECT_TRUE(onlyRedrawn());
    for (const char* symbol :
         {"SparkFloat6", "SparkFloat7", "SparkFloat8", "SparkFloat9", "SparkFloat13",
          "SparkFloat14", "SparkFloat16", "SparkFloat18", "SparkPup17", "SparkPup20", "SparkPup23",
          "SparkPup24", "SparkPush21", "SparkPush27"}) {
        EXPECT_EQ(change(symbol, kEndOfChange), nullptr) << symbol;
        EXPECT_TRUE(onlyRedrawn()) << symbol;
    }

    // A new proxy factor renders at once, "Auto Preview" or not.
    EXPECT_EQ(change("SparkPup33", kDrag), frame);
    EXPECT_TRUE(host().called("sparkControlUpdate(33)"));
    EXPECT_TRUE(rendered());
}

TEST_F(ControlCallbacks, BlendRendersOnlyAtTheModuleLevelAndClearOverlayOnlyRedraws) {
    EXPECT_EQ(change("SparkFloat27", kEndOfChange, /*mode=*/1), frame);
    EXPECT_TRUE(host().called("sparkControlUpdate(27)"));
    EXPECT_EQ(host().count("sparkViewingDraw"), 1);  // drawn first, then rendered
    EXPECT_EQ(host().count("sparkMemGetBuffer"), 2);
    for (auto [arg, mode] : {std::pair{kEndOfChange, 0}, std::pair{kDrag, 1}}) {
        EXPECT_EQ(change("SparkFloat27", arg, static_cast<char>(mode)), nullptr);
        EXPECT_TRUE(onlyRedrawn());
        EXPECT_EQ(host().count("sparkControlUpdate"), 0);
    }

    checkBox("SparkBoolean28")->Value = 1;
    EXPECT_EQ(change("SparkBoolean28", kEndOfChange), nullptr);
    EXPECT_TRUE(host().called("sparkControlUpdate(28)"));
    EXPECT_TRUE(onlyRedrawn());
}

TEST_F(ControlCallbacks, ResetAsksAndThenRestoresTheLensFieldsOnly) {
    const char* floats[] = {"SparkFloat6",  "SparkFloat7",  "SparkFloat8",  "SparkFloat9",
                            "SparkFloat13", "SparkFloat14", "SparkFloat16", "SparkFloat18"};
    const float defaults[] = {0, 0, 0, 0, 50, 50, 1, 1};
    const char* menus[] = {"SparkPup17", "SparkPup20", "SparkPup23", "SparkPup24"};
    const int menuDefaults[] = {3, 0, 0, 0};
    for (const char* s : floats) floatRecord(s)->Value = 0.25f;
    for (const char* s : menus) menu(s)->Value = 1;
    floatRecord("SparkFloat27")->Value = 30.0f;
    menu("SparkPup33")->Value = 2;
    checkBox("SparkBoolean28")->Value = 1;
    checkBox("SparkBoolean34")->Value = 0;

    host().confirmAnswers = {0};
    EXPECT_EQ(change("SparkPush32", kEndOfChange), nullptr);
    EXPECT_TRUE(
        host().called("sparkMessageConfirm(Are you sure you want to reset the current "
                      "settings to default values?)"));
    EXPECT_TRUE(onlyRedrawn());
    EXPECT_EQ(host().count("sparkControlUpdate"), 0);
    for (const char* s : floats) EXPECT_EQ(floatRecord(s)->Value, 0.25f) << s;
    for (const char* s : menus) EXPECT_EQ(menu(s)->Value, 1) << s;

    host().confirmAnswers = {1};
    EXPECT_EQ(change("SparkPush32", kEndOfChange), nullptr);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(floatRecord(floats[i])->Value, defaults[i]) << floats[i];
    for (int i = 0; i < 4; ++i) EXPECT_EQ(menu(menus[i])->Value, menuDefaults[i]) << menus[i];
    std::vector<std::string> updates;
    for (const simhost::Call& call : host().callsNamed("sparkControlUpdate"))
        updates.push_back(call.args.at(0));
    EXPECT_EQ(updates, (std::vector<std::string>{"6", "7", "8", "9", "13", "14", "16", "17", "18",
                                                 "20", "23", "24"}));
    EXPECT_EQ(floatRecord("SparkFloat27")->Value, 30.0f);
    EXPECT_EQ(menu("SparkPup33")->Value, 2);
    EXPECT_EQ(checkBox("SparkBoolean28")->Value, 1);
    EXPECT_EQ(checkBox("SparkBoolean34")->Value, 0);
    EXPECT_TRUE(onlyRedrawn());

    // The lens page's own "Reset   " (27) reaches the plug-in's reset.
    floatRecord("SparkFloat6")->Value = 0.5f;
    menu("SparkPup17")->Value = 0;
    change("SparkPush27", kEndOfChange);
    EXPECT_EQ(floatRecord("SparkFloat6")->Value, 0.0f);
    EXPECT_EQ(menu("SparkPup17")->Value, 3);
}
