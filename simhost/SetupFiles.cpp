// Set-ups: sparkSaveSetup and sparkLoadSetup.
//
// With Host::setupFiles on, a set-up is a text file of one line per value:
// a header line, then "<Kind> <number> <value>" for every control record of
// the loaded plug-in that holds a value (push buttons hold none) and
// "Key <control> <frame> <value>" for every curve key. Floats keep nine
// significant digits so that they read back bit for bit; string values escape
// backslash and newline. A load reads the whole file before it changes
// anything, so a missing or malformed file leaves every value as it was.
// Every value is checked by the rules of RecordValues.h, as a value a user
// types is, against the loaded plug-in's record: a float's range and
// finiteness, an integer's range, a menu index against its entries, 0 or 1
// for a check box, a text's length, a key's frame (from 0) and value. The
// first value that fails is reported with the file, the line and what is
// valid. Only regular files are read (a pipe would hang the load).
#include <OutputFile.h>
#include <RecordValues.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include "CallText.h"
#include "ControlRecords.h"
#include "SimHost.h"

using simhost::argText;
using simhost::Host;

namespace simhost {

using safeio::checkColourText;
using safeio::checkFloatText;
using safeio::checkIntText;
using safeio::OutputFile;
using safeio::rangeText;
using safeio::ValueCheck;

namespace {
const char kHeader[] = "simhost set-up 1";
const char kKeyKind[] = "Key";
const int kFloatDigits = 9;  // enough for a float to read back unchanged

// One line of a set-up, with its value checked and converted.
struct Entry {
    std::string kind;
    int number = 0;
    int frame = 0;      // keys only
    std::string value;  // as written
    float real = 0.0f;  // Float, UserFloat, Key
    int whole = 0;      // Int, Pup, Boolean
    unsigned long colour = 0;
    std::string text;  // String, unescaped
};

std::string escape(const char* text, size_t limit) {
    std::string out;
    for (size_t i = 0; i < limit && text[i]; ++i) {
        if (text[i] == '\\')
            out += "\\\\";
        else if (text[i] == '\n')
            out += "\\n";
        else
            out += text[i];
    }
    return out;
}

std::string unescape(const std::string& text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) {
            ++i;
            out += text[i] == 'n' ? '\n' : text[i];
        } else {
            out += text[i];
        }
    }
    return out;
}

std::string floatText(float value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*g", kFloatDigits, static_cast<double>(value));
    return text;
}

// The value line of one record, or empty for a kind that holds no value.
std::string valueText(const std::string& kind, void* address) {
    if (kind == "Float") return floatText(static_cast<SparkFloatStruct*>(address)->Value);
    if (kind == "UserFloat") return floatText(static_cast<SparkUserFloatStruct*>(address)->Value);
    if (kind == "Int") return std::to_string(static_cast<SparkIntStruct*>(address)->Value);
    if (kind == "Pup") return std::to_string(static_cast<SparkPupStruct*>(address)->Value);
    if (kind == "Boolean")
        return std::to_string(int{static_cast<SparkBooleanStruct*>(address)->Value});
    if (kind == "Color") return std::to_string(static_cast<SparkColorStruct*>(address)->Color);
    if (kind == "String") {
        const auto* record = static_cast<SparkStringStruct*>(address);
        return "\"" + escape(record->Value, sizeof record->Value) + "\"";
    }
    return "";
}

void applyValue(const Entry& entry, void* address) {
    if (entry.kind == "Float") {
        static_cast<SparkFloatStruct*>(address)->Value = entry.real;
    } else if (entry.kind == "UserFloat") {
        static_cast<SparkUserFloatStruct*>(address)->Value = entry.real;
    } else if (entry.kind == "Int") {
        static_cast<SparkIntStruct*>(address)->Value = entry.whole;
    } else if (entry.kind == "Pup") {
        static_cast<SparkPupStruct*>(address)->Value = entry.whole;
    } else if (entry.kind == "Boolean") {
        static_cast<SparkBooleanStruct*>(address)->Value = static_cast<char>(entry.whole);
    } else if (entry.kind == "Color") {
        static_cast<SparkColorStruct*>(address)->Color = entry.colour;
    } else if (entry.kind == "String") {
        auto* record = static_cast<SparkStringStruct*>(address);
        std::snprintf(record->Value, sizeof record->Value, "%s", entry.text.c_str());
    }
}

// Splits "<kind> <number> [<frame>] <value>"; the value is the rest of the line.
bool parseLine(const std::string& line, Entry* entry) {
    std::istringstream in(line);
    if (!(in >> entry->kind >> entry->number)) return false;
    const bool key = entry->kind == kKeyKind;
    if (key && !(in >> entry->frame)) return false;
    if (!key && !parseRecordSymbol(recordSymbol(entry->kind, entry->number), nullptr, nullptr))
        return false;
    in >> std::ws;
    std::getline(in, entry->value);
    return true;
}

// The text of a title before ':' or its printf field, without blanks.
std::string titleName(const char* title) {
    if (!title) return "";
    std::string name = title;
    name = name.substr(0, std::min(name.find(':'), name.find('%')));
    while (!name.empty() && name.back() == ' ') name.pop_back();
    while (!name.empty() && name.front() == ' ') name.erase(0, 1);
    return name;
}

// "SparkFloat6 (Radial1)", for messages.
std::string recordLabel(const std::string& kind, int number, void* address) {
    std::string name;
    if (address) {
        if (kind == "Float") name = titleName(static_cast<SparkFloatStruct*>(address)->Title);
        if (kind == "UserFloat")
            name = titleName(static_cast<SparkUserFloatStruct*>(address)->Title);
        if (kind == "Int") name = titleName(static_cast<SparkIntStruct*>(address)->Title);
        if (kind == "Boolean") name = titleName(static_cast<SparkBooleanStruct*>(address)->Title);
        if (kind == "String") name = titleName(static_cast<SparkStringStruct*>(address)->Title);
        if (kind == "Pup") {
            const auto* record = static_cast<SparkPupStruct*>(address);
            if (record->TitleCount > 0 && record->Titles[0] && std::strchr(record->Titles[0], ':'))
                name = titleName(record->Titles[0]);
        }
    }
    const std::string symbol = recordSymbol(kind, number);
    return name.empty() ? symbol : symbol + " (" + name + ")";
}

std::string floatProblem(ValueCheck check, float min, float max) {
    if (check == ValueCheck::OutOfRange) return " is outside its range " + rangeText(min, max);
    if (check == ValueCheck::NotFinite) return " is not a finite number";
    return " is not a number";
}

// The float record a key belongs to, or null.
void* keyedRecord(const Host& host, int number, std::string* kind) {
    if (!host.plugin) return nullptr;
    for (const char* candidate : {"Float", "UserFloat"}) {
        if (void* address = host.plugin->symbol(recordSymbol(candidate, number).c_str())) {
            *kind = candidate;
            return address;
        }
    }
    return nullptr;
}

void floatRange(const std::string& kind, void* address, float* min, float* max) {
    *min = *max = 0.0f;  // no record: any finite number
    if (kind == "Float") {
        *min = static_cast<SparkFloatStruct*>(address)->Min;
        *max = static_cast<SparkFloatStruct*>(address)->Max;
    } else if (kind == "UserFloat") {
        *min = static_cast<SparkUserFloatStruct*>(address)->Min;
        *max = static_cast<SparkUserFloatStruct*>(address)->Max;
    }
}

// A key's value: a float for the float record of its control (any finite
// float when the plug-in has no such record), at a frame from 0.
std::string checkKey(const Host& host, Entry* entry) {
    std::string kind;
    void* address = keyedRecord(host, entry->number, &kind);
    const std::string label = "key of " + (address ? recordLabel(kind, entry->number, address)
                                                   : "control " + std::to_string(entry->number));
    if (entry->frame < 0)
        return label + " at frame " + std::to_string(entry->frame) + ": key frames run from 0";
    float min, max;
    floatRange(kind, address, &min, &max);
    const ValueCheck check = checkFloatText(entry->value, min, max, &entry->real);
    return check == ValueCheck::Fine ? ""
                                     : label + " = " + entry->value + floatProblem(check, min, max);
}

std::string checkNumber(Entry* entry, void* address, const std::string& label) {
    if (entry->kind == "Float" || entry->kind == "UserFloat") {
        float min = 0.0f, max = 0.0f;
        if (address) floatRange(entry->kind, address, &min, &max);
        const ValueCheck check = checkFloatText(entry->value, min, max, &entry->real);
        return check == ValueCheck::Fine ? "" : label + floatProblem(check, min, max);
    }
    const auto* record = static_cast<SparkIntStruct*>(address);
    const int min = record ? record->Min : 0;
    const int max = record ? record->Max : 0;
    const ValueCheck check = checkIntText(entry->value, min, max, &entry->whole);
    if (check == ValueCheck::Fine) return "";
    return label + (check == ValueCheck::OutOfRange ? " is outside its range " + rangeText(min, max)
                                                    : " is not a whole number");
}

std::string checkMenu(Entry* entry, void* address, const std::string& label) {
    const auto* record = static_cast<SparkPupStruct*>(address);
    const int count = record ? std::clamp(record->TitleCount, 0, SPARK_MAX_PUP_TITLES) : 0;
    if (checkIntText(entry->value, 0, 0, &entry->whole) != ValueCheck::Fine)
        return label + " is not an entry number";
    if (record && (entry->whole < 0 || entry->whole >= count))
        return label + " is not one of its entries (0 .. " + std::to_string(count - 1) + ")";
    return "";
}

std::string checkText(Entry* entry, void* address, const std::string& label) {
    const std::string& value = entry->value;
    if (value.size() < 2 || value.front() != '"' || value.back() != '"')
        return label + ": a text value is written in double quotes";
    entry->text = unescape(value.substr(1, value.size() - 2));
    const size_t limit = sizeof(SparkStringStruct::Value) - 1;
    if (entry->text.size() > limit || entry->text.find('\0') != std::string::npos)
        return recordLabel(entry->kind, entry->number, address) + " holds at most " +
               std::to_string(limit) + " characters";
    return "";
}

// Checks an entry's value by the rules for a typed value, against the loaded
// plug-in's record; empty when fine, else what is wrong.
std::string checkEntry(const Host& host, Entry* entry) {
    if (entry->kind == kKeyKind) return checkKey(host, entry);
    void* address = host.plugin
                        ? host.plugin->symbol(recordSymbol(entry->kind, entry->number).c_str())
                        : nullptr;
    const std::string label =
        recordLabel(entry->kind, entry->number, address) + " = " + entry->value;
    if (entry->kind == "Float" || entry->kind == "UserFloat" || entry->kind == "Int")
        return checkNumber(entry, address, label);
    if (entry->kind == "Pup") return checkMenu(entry, address, label);
    if (entry->kind == "Boolean") {
        if (entry->value == "0" || entry->value == "1") {
            entry->whole = entry->value[0] - '0';
            return "";
        }
        return label + ": a check box holds 0 or 1";
    }
    if (entry->kind == "Color")
        return checkColourText(entry->value, &entry->colour) == ValueCheck::Fine
                   ? ""
                   : label + " is not a colour number";
    if (entry->kind == "String") return checkText(entry, address, label);
    return label + ": unknown kind of record";
}

bool saveSetupFile(const Host& host, const std::string& name, std::string* error) {
    if (name.empty()) {
        *error = "no set-up file name";
        return false;
    }
    std::ostringstream text;
    text << kHeader << "\n";
    if (host.plugin) {
        for (const Plugin::RecordRef& record : host.plugin->records()) {
            const std::string value = valueText(record.kind, record.address);
            if (!value.empty()) text << record.kind << " " << record.number << " " << value << "\n";
        }
    }
    for (const auto& control : host.curveKeys)
        for (const auto& key : control.second)
            text << kKeyKind << " " << control.first << " " << key.first << " "
                 << floatText(key.second) << "\n";

    // A reader never sees half a file, and a full disk is an error, not a short set-up.
    const std::string content = text.str();
    OutputFile out;
    std::string reason;
    if (!out.open(name, &reason) || !out.write(content.data(), content.size()) ||
        !out.commit(&reason)) {
        if (reason.empty()) reason = out.failure();
        *error = "cannot write set-up file " + name + ": " + reason;
        return false;
    }
    return true;
}

bool loadSetupFile(Host& host, const std::string& name, std::string* error) {
    // A pipe or a device would hang the read or never end it.
    struct stat status;
    if (stat(name.c_str(), &status) != 0) {
        *error = "cannot read set-up file " + name + ": " + std::strerror(errno);
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        *error = "set-up file " + name + " is not a regular file";
        return false;
    }
    std::ifstream in(name);
    if (!in) {
        *error = "cannot read set-up file " + name + ": " + std::strerror(errno);
        return false;
    }
    std::string line;
    if (!std::getline(in, line) || line != kHeader) {
        *error = "not a set-up file: " + name;
        return false;
    }
    std::vector<Entry> entries;
    for (int lineNumber = 2; std::getline(in, line); ++lineNumber) {
        if (line.empty()) continue;
        const std::string where = "set-up file " + name + ", line " + std::to_string(lineNumber);
        Entry entry;
        if (!parseLine(line, &entry)) {
            *error =
                where + ": not \"<kind> <number> <value>\" or \"Key <number> <frame> <value>\"";
            return false;
        }
        const std::string problem = checkEntry(host, &entry);
        if (!problem.empty()) {
            *error = where + ": " + problem;
            return false;
        }
        entries.push_back(entry);
    }
    if (in.bad()) {
        *error = "cannot read set-up file " + name;
        return false;
    }

    std::map<int, std::map<int, float>> keys;
    for (const Entry& entry : entries) {
        if (entry.kind == kKeyKind) {
            keys[entry.number][entry.frame] = entry.real;
        } else if (host.plugin) {
            // Records the plug-in no longer has are skipped, as with an older set-up.
            if (void* address = host.plugin->symbol(recordSymbol(entry.kind, entry.number).c_str()))
                applyValue(entry, address);
        }
    }
    host.curveKeys = keys;
    return true;
}
}  // namespace

}  // namespace simhost

extern "C" {

void sparkSaveSetup(char* name) {
    Host& host = Host::instance();
    simhost::note("sparkSaveSetup", name);
    ++host.setupSaves;
    if (!host.setupFiles) return;
    std::string error;
    host.setupError =
        simhost::saveSetupFile(host, name ? name : "", &error) ? std::string() : error;
}

void sparkLoadSetup(char* name) {
    Host& host = Host::instance();
    simhost::note("sparkLoadSetup", name);
    ++host.setupLoads;
    if (!host.setupFiles) return;
    std::string error;
    host.setupError =
        simhost::loadSetupFile(host, name ? name : "", &error) ? std::string() : error;
}

}  // extern "C"
