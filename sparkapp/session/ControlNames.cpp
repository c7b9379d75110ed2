// Naming, listing and setting the plug-in's control records.
#include "ControlNames.h"

#include <RecordValues.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {
const char kProxyName[] = "Proxy";
const char kFullResolution[] = "FULL";
const size_t kListNameWidth = 26;
const size_t kListDetailWidth = 44;

std::string trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t\n");
    if (first == std::string::npos) return "";
    const size_t last = text.find_last_not_of(" \t\n");
    return text.substr(first, last - first + 1);
}

std::string lowered(const std::string& text) {
    std::string out = trimmed(text);
    for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

std::string safeText(const char* text) { return text ? text : ""; }

// A proxy-resolution menu: "FULL", then fractions of the frame "1/2", "1/3", ...
// Hosts show it without a title of its own.
bool isResolutionMenu(const std::vector<std::string>& entries) {
    if (entries.size() < 2 || entries.front() != kFullResolution) return false;
    return std::all_of(entries.begin() + 1, entries.end(), [](const std::string& entry) {
        return entry.size() > 2 && entry.compare(0, 2, "1/") == 0 &&
               std::all_of(entry.begin() + 2, entry.end(),
                           [](char c) { return std::isdigit(static_cast<unsigned char>(c)); });
    });
}

// The text before ':' (or before the printf field when there is no ':').
std::string nameFromTitle(const std::string& title) {
    size_t end = title.find(':');
    if (end == std::string::npos) end = title.find('%');
    return trimmed(title.substr(0, end));
}

// The one printf conversion of a title when it is safe to format a value
// with (flags, width, precision, then one of the allowed letters, "%%"
// aside); empty otherwise.
std::string conversionOf(const std::string& title, const char* letters) {
    std::string found;
    for (size_t i = 0; i < title.size(); ++i) {
        if (title[i] != '%') continue;
        if (i + 1 < title.size() && title[i + 1] == '%') {
            ++i;
            continue;
        }
        size_t end = i + 1;
        while (end < title.size() && std::strchr("-+ #0", title[end])) ++end;
        while (end < title.size() && std::isdigit(static_cast<unsigned char>(title[end]))) ++end;
        if (end < title.size() && title[end] == '.') {
            ++end;
            while (end < title.size() && std::isdigit(static_cast<unsigned char>(title[end])))
                ++end;
        }
        if (end >= title.size() || !std::strchr(letters, title[end]) || !found.empty()) return "";
        found = title.substr(i, end - i + 1);
        i = end;
    }
    return found;
}

std::string formatNumber(const std::string& title, double value, bool integer) {
    char text[128];
    const std::string conversion = conversionOf(title, integer ? "di" : "fFeEgG");
    if (conversion.empty()) {
        std::snprintf(text, sizeof text, "%g", value);
    } else if (integer) {
        std::snprintf(text, sizeof text, conversion.c_str(), static_cast<int>(value));
    } else {
        std::snprintf(text, sizeof text, conversion.c_str(), value);
    }
    return trimmed(text);
}

// The value text of a menu entry: after "<prefix>: ", trailing blanks dropped.
std::string entryValue(const std::string& entry, const std::string& prefix) {
    const size_t colon = entry.find(':');
    if (!prefix.empty() && colon != std::string::npos && trimmed(entry.substr(0, colon)) == prefix)
        return trimmed(entry.substr(colon + 1));
    return trimmed(entry);
}

std::string joined(const std::vector<std::string>& items, const std::string& separator) {
    std::string out;
    for (size_t i = 0; i < items.size(); ++i) out += (i ? separator : "") + items[i];
    return out;
}

bool parseLong(const std::string& text, long* value) {
    const std::string clean = trimmed(text);
    if (clean.empty()) return false;
    char* end = nullptr;
    errno = 0;
    *value = std::strtol(clean.c_str(), &end, 10);
    return errno == 0 && end && *end == '\0';
}

RunStatus usage(const std::string& text) { return RunStatus::failure(ExitCode::Usage, text); }

// Float and user-float records share their leading members.
struct FloatFields {
    float* value;
    float min, max, increment;
    std::string title;
};

FloatFields floatFields(const Control& control) {
    if (control.recordKind == "UserFloat") {
        auto* record = static_cast<SparkUserFloatStruct*>(control.record);
        return {&record->Value, record->Min, record->Max, record->Increment,
                safeText(record->Title)};
    }
    auto* record = static_cast<SparkFloatStruct*>(control.record);
    return {&record->Value, record->Min, record->Max, record->Increment, safeText(record->Title)};
}

// The message for a number the record refuses, naming the rule it broke.
RunStatus valueRefused(const Control& control, const std::string& value, safeio::ValueCheck check) {
    switch (check) {
        case safeio::ValueCheck::OutOfRange: {
            double min = 0.0, max = 0.0;
            if (control.kind == ControlKind::Integer) {
                const auto* record = static_cast<const SparkIntStruct*>(control.record);
                min = record->Min;
                max = record->Max;
            } else {
                const FloatFields fields = floatFields(control);
                min = fields.min;
                max = fields.max;
            }
            return usage(control.name + " = " + value + " is outside its range " +
                         safeio::rangeText(min, max));
        }
        case safeio::ValueCheck::NotFinite:
            return usage(control.name + " takes a finite number, not \"" + value + "\"");
        default:
            break;
    }
    return usage(
        control.name +
        (control.kind == ControlKind::Integer ? " takes a whole number" : " takes a number") +
        ", not \"" + value + "\"");
}
}  // namespace

ControlNames::ControlNames(const std::vector<simhost::Plugin::RecordRef>& records) {
    for (const simhost::Plugin::RecordRef& ref : records) {
        Control control;
        control.recordKind = ref.kind;
        control.number = ref.number;
        control.symbol = ref.symbol;
        control.record = ref.address;
        const std::string shortSymbol = ref.kind + std::to_string(ref.number);
        std::string title;
        if (ref.kind == "Float" || ref.kind == "UserFloat") {
            control.kind = ControlKind::Float;
            title = floatFields(control).title;
        } else if (ref.kind == "Int") {
            control.kind = ControlKind::Integer;
            title = safeText(static_cast<SparkIntStruct*>(ref.address)->Title);
        } else if (ref.kind == "Pup") {
            control.kind = ControlKind::Menu;
            const auto* record = static_cast<SparkPupStruct*>(ref.address);
            const int count = std::clamp(record->TitleCount, 0, SPARK_MAX_PUP_TITLES);
            const std::string first = count > 0 ? safeText(record->Titles[0]) : "";
            std::string prefix;
            if (first.find(':') != std::string::npos)
                prefix = trimmed(first.substr(0, first.find(':')));
            for (int i = 0; i < count; ++i)
                control.entries.push_back(entryValue(safeText(record->Titles[i]), prefix));
            control.name = prefix;
            if (prefix.empty() && isResolutionMenu(control.entries)) control.name = kProxyName;
        } else if (ref.kind == "Boolean") {
            control.kind = ControlKind::Check;
            title = safeText(static_cast<SparkBooleanStruct*>(ref.address)->Title);
        } else if (ref.kind == "String") {
            control.kind = ControlKind::Text;
            title = safeText(static_cast<SparkStringStruct*>(ref.address)->Title);
        } else if (ref.kind == "Color") {
            control.kind = ControlKind::Colour;
        } else if (ref.kind == "Push") {
            control.kind = ControlKind::Button;
            title = safeText(static_cast<SparkPushStruct*>(ref.address)->Title);
        } else {
            continue;
        }
        if (control.kind != ControlKind::Menu) control.name = nameFromTitle(title);
        if (control.name.empty()) control.name = shortSymbol;
        controls_.push_back(control);
    }
}

std::string ControlNames::validNames() const {
    std::vector<std::string> names;
    for (const Control& control : controls_)
        if (control.kind != ControlKind::Button &&
            std::find(names.begin(), names.end(), control.name) == names.end())
            names.push_back(control.name);
    return names.empty() ? "(the plug-in has no settable controls)" : joined(names, ", ");
}

const Control* ControlNames::named(const std::string& name, ControlKind kind) const {
    const std::string wanted = lowered(name);
    for (const Control& candidate : controls_)
        if (candidate.kind == kind && lowered(candidate.name) == wanted) return &candidate;
    return nullptr;
}

RunStatus ControlNames::find(const std::string& name, const Control** control) const {
    const std::string wanted = lowered(name);
    std::vector<const Control*> byName;
    const Control* button = nullptr;
    for (const Control& candidate : controls_) {
        const std::string shortSymbol = candidate.recordKind + std::to_string(candidate.number);
        const bool symbolMatch =
            lowered(candidate.symbol) == wanted || lowered(shortSymbol) == wanted;
        const bool nameMatch = lowered(candidate.name) == wanted;
        if (!symbolMatch && !nameMatch) continue;
        if (candidate.kind == ControlKind::Button) {
            button = &candidate;
            continue;
        }
        if (symbolMatch) {
            *control = &candidate;
            return RunStatus::success();
        }
        byName.push_back(&candidate);
    }
    if (byName.size() == 1) {
        *control = byName.front();
        return RunStatus::success();
    }
    if (byName.size() > 1) {
        std::vector<std::string> symbols;
        for (const Control* candidate : byName) symbols.push_back(candidate->symbol);
        return usage("control name \"" + trimmed(name) + "\" fits several controls; name one of " +
                     joined(symbols, ", ") + " instead");
    }
    if (button)
        return usage("\"" + trimmed(name) + "\" is a push button (" + button->symbol +
                     "): it holds no value to set");
    return usage("unknown control \"" + trimmed(name) + "\"; the controls are: " + validNames());
}

namespace {
RunStatus assignNumber(const Control& control, const std::string& value) {
    safeio::ValueCheck check;
    if (control.kind == ControlKind::Float) {
        const FloatFields fields = floatFields(control);
        float number = 0.0f;
        check = safeio::checkFloatText(value, fields.min, fields.max, &number);
        if (check == safeio::ValueCheck::Fine) *fields.value = number;
    } else {
        auto* record = static_cast<SparkIntStruct*>(control.record);
        int number = 0;
        check = safeio::checkIntText(value, record->Min, record->Max, &number);
        if (check == safeio::ValueCheck::Fine) record->Value = number;
    }
    return check == safeio::ValueCheck::Fine ? RunStatus::success()
                                             : valueRefused(control, value, check);
}

RunStatus assignMenu(const Control& control, const std::string& value) {
    for (size_t i = 0; i < control.entries.size(); ++i) {
        if (!control.entries[i].empty() && lowered(control.entries[i]) == lowered(value)) {
            static_cast<SparkPupStruct*>(control.record)->Value = static_cast<int>(i);
            return RunStatus::success();
        }
    }
    return usage(control.name + " has no entry \"" + value +
                 "\"; its entries are: " + joined(control.entries, ", "));
}

RunStatus assignCheck(const Control& control, const std::string& value) {
    const std::string flag = lowered(value);
    char on;
    if (flag == "on" || flag == "1" || flag == "yes" || flag == "true") {
        on = 1;
    } else if (flag == "off" || flag == "0" || flag == "no" || flag == "false") {
        on = 0;
    } else {
        return usage(control.name + " is a check box: use on, off, 1 or 0, not \"" + value + "\"");
    }
    static_cast<SparkBooleanStruct*>(control.record)->Value = on;
    return RunStatus::success();
}

// The text as given, blanks and all.
RunStatus assignText(const Control& control, const std::string& text) {
    auto* record = static_cast<SparkStringStruct*>(control.record);
    if (text.size() >= sizeof record->Value)
        return usage(control.name + " holds at most " + std::to_string(sizeof record->Value - 1) +
                     " characters");
    std::snprintf(record->Value, sizeof record->Value, "%s", text.c_str());
    return RunStatus::success();
}

RunStatus assignColour(const Control& control, const std::string& value) {
    unsigned long number = 0;
    if (safeio::checkColourText(value, &number) != safeio::ValueCheck::Fine)
        return usage(control.name + " takes a colour number, not \"" + value + "\"");
    static_cast<SparkColorStruct*>(control.record)->Color = number;
    return RunStatus::success();
}
}  // namespace

RunStatus ControlNames::assign(const Control& control, const std::string& text) const {
    const std::string value = trimmed(text);
    switch (control.kind) {
        case ControlKind::Float:
        case ControlKind::Integer:
            return assignNumber(control, value);
        case ControlKind::Menu:
            return assignMenu(control, value);
        case ControlKind::Check:
            return assignCheck(control, value);
        case ControlKind::Text:
            return assignText(control, text);
        case ControlKind::Colour:
            return assignColour(control, value);
        case ControlKind::Button:
            break;
    }
    return usage(control.name + " holds no value to set");
}

RunStatus ControlNames::set(const std::string& assignment, const Control** control) const {
    const size_t equals = assignment.find('=');
    if (equals == std::string::npos)
        return usage("--set takes NAME=VALUE, not \"" + assignment + "\"");
    const Control* found = nullptr;
    RunStatus status = find(assignment.substr(0, equals), &found);
    if (!status.ok()) return status;
    status = assign(*found, assignment.substr(equals + 1));
    if (status.ok() && control) *control = found;
    return status;
}

RunStatus ControlNames::parseKey(const std::string& text, const Control** control, int* frame,
                                 float* value) const {
    const size_t equals = text.find('=');
    const size_t at = equals == std::string::npos ? std::string::npos : text.rfind('@', equals);
    if (at == std::string::npos) return usage("--key takes NAME@FRAME=VALUE, not \"" + text + "\"");
    const Control* found = nullptr;
    RunStatus status = find(text.substr(0, at), &found);
    if (!status.ok()) return status;
    if (found->kind != ControlKind::Float)
        return usage(found->name +
                     " is not an animatable number field; only float fields take keys");
    long keyFrame = 0;
    if (!parseLong(text.substr(at + 1, equals - at - 1), &keyFrame) || keyFrame < 0 ||
        keyFrame > INT_MAX)
        return usage("bad key frame in \"" + text + "\": use a whole frame number from 0");
    const std::string valueText = trimmed(text.substr(equals + 1));
    const FloatFields fields = floatFields(*found);
    float single = 0.0f;
    const safeio::ValueCheck check =
        safeio::checkFloatText(valueText, fields.min, fields.max, &single);
    if (check != safeio::ValueCheck::Fine) return valueRefused(*found, valueText, check);
    *control = found;
    *frame = static_cast<int>(keyFrame);
    *value = single;
    return RunStatus::success();
}

std::vector<std::pair<const Control*, float>> ControlNames::keyedValues(
    const simhost::Host& host) const {
    std::vector<std::pair<const Control*, float>> values;
    for (const Control& control : controls_) {
        if (control.kind != ControlKind::Float) continue;
        const auto keys = host.curveKeys.find(control.number);
        if (keys != host.curveKeys.end() && !keys->second.empty())
            values.emplace_back(&control, *floatFields(control).value);
    }
    return values;
}

void ControlNames::setValue(const Control& control, float value) const {
    if (control.kind == ControlKind::Float) *floatFields(control).value = value;
}

std::string ControlNames::applyCurves(const simhost::Host& host, unsigned frame) const {
    std::vector<std::string> applied;
    for (const Control& control : controls_) {
        if (control.kind != ControlKind::Float) continue;
        const auto keys = host.curveKeys.find(control.number);
        if (keys == host.curveKeys.end() || keys->second.empty()) continue;
        *floatFields(control).value = host.curveValue(control.number, static_cast<float>(frame));
        applied.push_back(control.name + "=" + valueText(control));
    }
    return joined(applied, " ");
}

std::string ControlNames::valueText(const Control& control) const {
    switch (control.kind) {
        case ControlKind::Float: {
            const FloatFields fields = floatFields(control);
            return formatNumber(fields.title, *fields.value, false);
        }
        case ControlKind::Integer: {
            const auto* record = static_cast<SparkIntStruct*>(control.record);
            return formatNumber(safeText(record->Title), record->Value, true);
        }
        case ControlKind::Menu: {
            const int index = static_cast<SparkPupStruct*>(control.record)->Value;
            if (index >= 0 && index < static_cast<int>(control.entries.size()))
                return control.entries[index];
            return "(entry " + std::to_string(index) + ")";
        }
        case ControlKind::Check:
            return static_cast<SparkBooleanStruct*>(control.record)->Value ? "on" : "off";
        case ControlKind::Text: {
            const auto* record = static_cast<SparkStringStruct*>(control.record);
            return "\"" + std::string(record->Value, strnlen(record->Value, sizeof record->Value)) +
                   "\"";
        }
        case ControlKind::Colour:
            return std::to_string(static_cast<SparkColorStruct*>(control.record)->Color);
        case ControlKind::Button:
            break;
    }
    return "";
}

std::string ControlNames::listing() const {
    std::string out;
    for (const Control& control : controls_) {
        std::string head = control.name;
        std::string detail;
        switch (control.kind) {
            case ControlKind::Float: {
                const FloatFields fields = floatFields(control);
                detail = fields.min < fields.max
                             ? "number, " + safeio::rangeText(fields.min, fields.max)
                             : "number";
                break;
            }
            case ControlKind::Integer: {
                const auto* record = static_cast<SparkIntStruct*>(control.record);
                detail = record->Min < record->Max
                             ? "whole number, " + safeio::rangeText(record->Min, record->Max)
                             : "whole number";
                break;
            }
            case ControlKind::Menu:
                detail = "menu: " + joined(control.entries, " | ");
                break;
            case ControlKind::Check:
                detail = "check box: on | off";
                break;
            case ControlKind::Text:
                detail = "text";
                break;
            case ControlKind::Colour:
                detail = "colour number";
                break;
            case ControlKind::Button:
                detail = "push button, no value";
                break;
        }
        if (control.kind != ControlKind::Button) head += " = " + valueText(control);
        head.resize(std::max(head.size() + 2, kListNameWidth), ' ');
        detail.resize(std::max(detail.size() + 2, kListDetailWidth), ' ');
        out += head + detail + control.symbol + "\n";
    }
    return out;
}
