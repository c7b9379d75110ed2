// Record kinds and symbol names of exported control records.
#include "ControlRecords.h"

#include <cctype>

namespace simhost {

namespace {
const char kSymbolPrefix[] = "Spark";
}

const std::vector<std::string>& recordKinds() {
    static const std::vector<std::string> kinds = {"Float",     "Pup", "Push",   "Boolean",
                                                   "UserFloat", "Int", "String", "Color"};
    return kinds;
}

std::string recordSymbol(const std::string& kind, int number) {
    return kSymbolPrefix + kind + std::to_string(number);
}

bool parseRecordSymbol(const std::string& symbol, std::string* kind, int* number) {
    const std::string prefix = kSymbolPrefix;
    if (symbol.compare(0, prefix.size(), prefix) != 0) return false;
    size_t digits = symbol.size();
    while (digits > prefix.size() && std::isdigit(static_cast<unsigned char>(symbol[digits - 1])))
        --digits;
    if (digits == symbol.size() || symbol.size() - digits > 3) return false;
    const std::string name = symbol.substr(prefix.size(), digits - prefix.size());
    for (const std::string& known : recordKinds()) {
        if (known != name) continue;
        const int value = std::stoi(symbol.substr(digits));
        if (value < 1 || value > kMaxRecordNumber) return false;
        if (kind) *kind = name;
        if (number) *number = value;
        return true;
    }
    return false;
}

SparkCallbackFunc recordCallback(const std::string& kind, void* address) {
    if (!address) return nullptr;
    if (kind == "Float") return static_cast<SparkFloatStruct*>(address)->Callback;
    if (kind == "UserFloat") return static_cast<SparkUserFloatStruct*>(address)->Callback;
    if (kind == "Int") return static_cast<SparkIntStruct*>(address)->Callback;
    if (kind == "Pup") return static_cast<SparkPupStruct*>(address)->Callback;
    if (kind == "Push") return static_cast<SparkPushStruct*>(address)->Callback;
    if (kind == "Boolean") return static_cast<SparkBooleanStruct*>(address)->Callback;
    if (kind == "String") return static_cast<SparkStringStruct*>(address)->Callback;
    if (kind == "Color") return static_cast<SparkColorStruct*>(address)->Callback;
    return nullptr;
}

}  // namespace simhost
