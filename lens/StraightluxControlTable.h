// The plug-in's control table: one description per host control record, read
// by everything that needs a control's number, title, range or default (the
// exported records, the binding, the callbacks, the resets, the channel
// editor, the amplitude import and the tests). Which records exist and what
// each is bound to is the control list, StraightluxControls.def; the table's
// arrays are expanded from it, and static_asserts below hold every listed
// record's descriptor to the list's number, kind and symbol. Values are in host units:
// floats as the field shows them (percent for the centre), menus as 0-based
// indices; `pluginDefault` gives the plug-in's units (fractions, 1-based
// entries). Titles keep their trailing blanks: the host lays the page out
// with them. Number 27 carries two records, the lens page's "Reset   "
// button and the "Blend" float.
#pragma once

#include <cstddef>

enum class ControlRecordKind { kFloat, kUserFloat, kMenu, kPush, kBoolean };

// How a float field's host value relates to the plug-in's.
enum class ControlUnit {
    kPlain,    // the same number on both sides
    kPercent,  // the host shows percent of the frame; the plug-in holds a fraction
};

constexpr int kMaxMenuEntries = 20;  // entry titles a menu record holds

struct ControlDescriptor {
    int number;
    ControlRecordKind kind;
    const char* symbol;  // the exported record's name
    const char* title;   // printf format with one float (floats), or the title
    float defaultValue;  // floats and check boxes
    float min, max, increment;
    ControlUnit unit;
    int defaultIndex;  // menus: the host's 0-based index
    int entryCount;
    const char* const* entries;  // menus: entryCount titles
    const char* channelName;     // animatable channels: the name set at start-up

    // A menu's default as the plug-in counts entries, from 1.
    constexpr int defaultItem() const { return defaultIndex + 1; }
    // A float's default in plug-in units.
    constexpr double pluginDefault() const {
        return unit == ControlUnit::kPercent ? defaultValue / 100.0 : defaultValue;
    }
};

constexpr ControlDescriptor floatControl(int number, const char* symbol, const char* title,
                                         float defaultValue, float min, float max, float increment,
                                         const char* channelName = nullptr,
                                         ControlUnit unit = ControlUnit::kPlain) {
    return ControlDescriptor{number,
                             ControlRecordKind::kFloat,
                             symbol,
                             title,
                             defaultValue,
                             min,
                             max,
                             increment,
                             unit,
                             0,
                             0,
                             nullptr,
                             channelName};
}

template <std::size_t N>
constexpr ControlDescriptor menuControl(int number, const char* symbol,
                                        const char* const (&entries)[N], int defaultIndex) {
    static_assert(N <= kMaxMenuEntries, "a menu record holds at most 20 entries");
    return ControlDescriptor{
        number, ControlRecordKind::kMenu, symbol,       entries[0],          0.0f,    0.0f,   0.0f,
        0.0f,   ControlUnit::kPlain,      defaultIndex, static_cast<int>(N), entries, nullptr};
}

constexpr ControlDescriptor pushControl(int number, const char* symbol, const char* title) {
    return ControlDescriptor{number, ControlRecordKind::kPush, symbol, title, 0.0f,    0.0f,   0.0f,
                             0.0f,   ControlUnit::kPlain,      0,      0,     nullptr, nullptr};
}

constexpr ControlDescriptor booleanControl(int number, const char* symbol, const char* title,
                                           bool on) {
    return ControlDescriptor{
        number, ControlRecordKind::kBoolean, symbol, title, on ? 1.0f : 0.0f, 0.0f,   0.0f,
        0.0f,   ControlUnit::kPlain,         0,      0,     nullptr,          nullptr};
}

// Menu entries.
inline constexpr const char* kSamplingEntries[] = {"Sampling: Nearest  ", "Sampling: Linear  ",
                                                   "Sampling: Cubic  ", "Sampling: SharpCubic  ",
                                                   "Sampling: BSpline  "};
inline constexpr const char* kLineEditEntries[] = {
    "LineEdit: No Action  ",  "LineEdit: Add Line  ",     "LineEdit: Delete Line  ",
    "LineEdit: Move Point  ", "LineEdit: Delete Point  ", "LineEdit: Insert Point  "};
inline constexpr const char* kModeEntries[] = {"Mode: Remove  ", "Mode: Add  ",
                                               "Mode: Auto Remove  "};
inline constexpr const char* kViewEntries[] = {"View: Result  ", "View: Input  "};
inline constexpr const char* kProxyEntries[] = {"FULL", "1/2",  "1/3",  "1/4", "1/6",
                                                "1/8",  "1/12", "1/16", "1/32"};

// Lens page: the distortion model.
inline constexpr ControlDescriptor kRadial1Control =
    floatControl(6, "SparkFloat6", "Radial1: %.3f", 0.0f, -1.0f, 3.0f, 0.001f, "Radial1");
inline constexpr ControlDescriptor kRadial2Control =
    floatControl(7, "SparkFloat7", "Radial2: %.3f", 0.0f, -1.0f, 3.0f, 0.001f, "Radial2");
inline constexpr ControlDescriptor kXCurvatureControl =
    floatControl(8, "SparkFloat8", "XCurvature: %.3f", 0.0f, -1.0f, 1.0f, 0.001f, "XCurvature");
inline constexpr ControlDescriptor kYCurvatureControl =
    floatControl(9, "SparkFloat9", "YCurvature: %.3f", 0.0f, -1.0f, 1.0f, 0.001f, "YCurvature");
inline constexpr ControlDescriptor kCentreXControl =
    floatControl(13, "SparkFloat13", "Centre X: %.2f", 50.0f, 0.0f, 100.0f, 0.05f, "Centre X",
                 ControlUnit::kPercent);
inline constexpr ControlDescriptor kCentreYControl =
    floatControl(14, "SparkFloat14", "Centre Y: %.2f", 50.0f, 0.0f, 100.0f, 0.05f, "Centre Y",
                 ControlUnit::kPercent);
inline constexpr ControlDescriptor kSqueezeControl =
    floatControl(16, "SparkFloat16", "Squeeze: %.3f", 1.0f, 0.5f, 5.0f, 0.001f, "Squeeze");
inline constexpr ControlDescriptor kSamplingControl =
    menuControl(17, "SparkPup17", kSamplingEntries, 3);
inline constexpr ControlDescriptor kMagnifyControl =
    floatControl(18, "SparkFloat18", "Magnify: %.3f", 1.0f, 0.2f, 5.0f, 0.001f, "Magnify");
// Lens page: drawn lines, the fit, the mode and the view.
inline constexpr ControlDescriptor kLineEditControl =
    menuControl(20, "SparkPup20", kLineEditEntries, 0);
inline constexpr ControlDescriptor kKillLinesControl =
    pushControl(21, "SparkPush21", "KillLines   ");
inline constexpr ControlDescriptor kAutoFindControl = pushControl(22, "SparkPush22", "AutoFind   ");
inline constexpr ControlDescriptor kModeControl = menuControl(23, "SparkPup23", kModeEntries, 0);
inline constexpr ControlDescriptor kViewControl = menuControl(24, "SparkPup24", kViewEntries, 0);
inline constexpr ControlDescriptor kResetButtonControl = pushControl(27, "SparkPush27", "Reset   ");
// Common fields.
inline constexpr ControlDescriptor kBlendControl =
    floatControl(27, "SparkFloat27", "Blend: %.2f", 0.0f, 0.0f, 100.0f, 0.1f);
inline constexpr ControlDescriptor kClearOverlayControl =
    booleanControl(28, "SparkBoolean28", "Clear Overlay", false);
inline constexpr ControlDescriptor kHelpControl = pushControl(31, "SparkPush31", "Help");
inline constexpr ControlDescriptor kResetAllControl = pushControl(32, "SparkPush32", "Reset");
inline constexpr ControlDescriptor kProxyControl = menuControl(33, "SparkPup33", kProxyEntries, 0);
inline constexpr ControlDescriptor kAutoPreviewControl =
    booleanControl(34, "SparkBoolean34", "Auto Preview", true);
// A channel-editor channel with no field on the pages and no control object.
inline constexpr ControlDescriptor kAmplitudeControl =
    ControlDescriptor{93,
                      ControlRecordKind::kUserFloat,
                      "SparkUserFloat93",
                      "Amplitude Import: %.1f",
                      0.0f,
                      -1000.0f,
                      1000.0f,
                      0.001f,
                      ControlUnit::kPlain,
                      0,
                      0,
                      nullptr,
                      nullptr};
inline constexpr ControlDescriptor kImportAmplitudeControl =
    pushControl(114, "SparkPush114", "Import Amplitude File");

// Every exported record, in the order of the control list (page order).
inline constexpr const ControlDescriptor* kControlTable[] = {
#define STRAIGHTLUX_RECORD(Name, Kind, N, callback) &k##Name##Control,
#include "StraightluxControls.def"
};

// The animatable channels named at start-up and listed in the channel editor's
// "Lens" folder, in that order: the lens page's float fields.
inline constexpr const ControlDescriptor* kLensChannels[] = {
#define STRAIGHTLUX_FLOAT(Name, N, member) &k##Name##Control,
#define STRAIGHTLUX_POSITION(Name, NX, NY, member) &k##Name##XControl, &k##Name##YControl,
#define STRAIGHTLUX_MENU(Name, N, member)
#define STRAIGHTLUX_BUTTON(Name, N, member, pluginCallback)
#include "StraightluxControls.def"
};

// The control list and the descriptors agree: each listed record's descriptor
// has the record's number, kind and symbol.
constexpr bool sameText(const char* a, const char* b) {
    while (*a != '\0' && *a == *b) ++a, ++b;
    return *a == *b;
}
// A record kind as the host's symbol names spell it.
constexpr const char* recordKindName(ControlRecordKind kind) {
    switch (kind) {
        case ControlRecordKind::kFloat:
            return "Float";
        case ControlRecordKind::kUserFloat:
            return "UserFloat";
        case ControlRecordKind::kMenu:
            return "Pup";
        case ControlRecordKind::kPush:
            return "Push";
        case ControlRecordKind::kBoolean:
            return "Boolean";
    }
    return "";
}
#define STRAIGHTLUX_RECORD(Name, Kind, N, callback)                                      \
    static_assert(k##Name##Control.number == N, "k" #Name "Control: the listed number"); \
    static_assert(sameText(recordKindName(k##Name##Control.kind), #Kind),                \
                  "k" #Name "Control: the listed kind");                                 \
    static_assert(sameText(k##Name##Control.symbol, "Spark" #Kind #N),                   \
                  "k" #Name "Control: the listed symbol");
#include "StraightluxControls.def"

// A lens channel has a channel name; the position's y field is the number
// after its x field.
#define STRAIGHTLUX_FLOAT(Name, N, member) \
    static_assert(k##Name##Control.channelName != nullptr, "k" #Name "Control: a channel");
#define STRAIGHTLUX_POSITION(Name, NX, NY, member)                                            \
    static_assert(NY == NX + 1, #Name ": the y field follows the x field");                   \
    static_assert(                                                                            \
        k##Name##XControl.channelName != nullptr && k##Name##YControl.channelName != nullptr, \
        #Name ": channels");
#define STRAIGHTLUX_MENU(Name, N, member)
#define STRAIGHTLUX_BUTTON(Name, N, member, pluginCallback)
#include "StraightluxControls.def"
