// Set-ups: sparkSaveSetup and sparkLoadSetup.
//
// With Host::setupFiles on, a set-up is a text file of one line per value:
// a header line, then "<Kind> <number> <value>" for every control record of
// the loaded plug-in that holds a value (push buttons hold none) and
// "Key <control> <frame> <value>" for every curve key. Floats keep nine
// significant digits so that they read back bit for bit; string values escape
// backslash and newline. A load reads the whole file before it changes
// anything, so a missing or malformed file leaves every value as it was.
#include <unistd.h>

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

namespace {
const char kHeader[] = "simhost set-up 1";
const char kKeyKind[] = "Key";
const int kFloatDigits = 9;  // enough for a float to read back unchanged

struct Entry {
    std::string kind;
    int number = 0;
    int frame = 0;      // keys only
    std::string value;  // as written
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

// Checks that text is a whole value of the kind.
bool validValue(const std::string& kind, const std::string& text) {
    if (kind == "String") return text.size() >= 2 && text.front() == '"' && text.back() == '"';
    if (text.empty()) return false;
    char* end = nullptr;
    errno = 0;
    if (kind == "Float" || kind == "UserFloat" || kind == kKeyKind)
        std::strtof(text.c_str(), &end);
    else if (kind == "Color")
        std::strtoul(text.c_str(), &end, 10);
    else
        std::strtol(text.c_str(), &end, 10);
    return errno == 0 && end && *end == '\0';
}

void applyValue(const std::string& kind, void* address, const std::string& text) {
    if (kind == "Float") {
        static_cast<SparkFloatStruct*>(address)->Value = std::strtof(text.c_str(), nullptr);
    } else if (kind == "UserFloat") {
        static_cast<SparkUserFloatStruct*>(address)->Value = std::strtof(text.c_str(), nullptr);
    } else if (kind == "Int") {
        static_cast<SparkIntStruct*>(address)->Value = std::atoi(text.c_str());
    } else if (kind == "Pup") {
        static_cast<SparkPupStruct*>(address)->Value = std::atoi(text.c_str());
    } else if (kind == "Boolean") {
        static_cast<SparkBooleanStruct*>(address)->Value =
            static_cast<char>(std::atoi(text.c_str()));
    } else if (kind == "Color") {
        static_cast<SparkColorStruct*>(address)->Color = std::strtoul(text.c_str(), nullptr, 10);
    } else if (kind == "String") {
        auto* record = static_cast<SparkStringStruct*>(address);
        const std::string value = unescape(text.substr(1, text.size() - 2));
        std::snprintf(record->Value, sizeof record->Value, "%s", value.c_str());
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
    return validValue(entry->kind, entry->value);
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

    // A reader never sees half a file: write aside, then rename over the name.
    const std::string temporary = name + ".tmp" + std::to_string(getpid());
    std::ofstream out(temporary, std::ios::trunc);
    out << text.str();
    out.close();
    if (!out || std::rename(temporary.c_str(), name.c_str()) != 0) {
        *error = "cannot write set-up file " + name + ": " + std::strerror(errno);
        std::remove(temporary.c_str());
        return false;
    }
    return true;
}

bool loadSetupFile(Host& host, const std::string& name, std::string* error) {
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
        Entry entry;
        if (!parseLine(line, &entry)) {
            *error = "bad line " + std::to_string(lineNumber) + " in set-up file " + name;
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
            keys[entry.number][entry.frame] = std::strtof(entry.value.c_str(), nullptr);
        } else if (host.plugin) {
            // Records the plug-in no longer has are skipped, as with an older set-up.
            if (void* address = host.plugin->symbol(recordSymbol(entry.kind, entry.number).c_str()))
                applyValue(entry.kind, address, entry.value);
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
    host.record("sparkSaveSetup", {argText(name)});
    if (!host.setupFiles) return;
    std::string error;
    host.setupError =
        simhost::saveSetupFile(host, name ? name : "", &error) ? std::string() : error;
}

void sparkLoadSetup(char* name) {
    Host& host = Host::instance();
    host.record("sparkLoadSetup", {argText(name)});
    if (!host.setupFiles) return;
    std::string error;
    host.setupError =
        simhost::loadSetupFile(host, name ? name : "", &error) ? std::string() : error;
}

}  // extern "C"
