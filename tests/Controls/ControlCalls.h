// Shared by the control tests: a clean simulated host and the host calls made
// since, as "name(arg,...)" texts.
#pragma once

#include <SimHost.h>

#include <string>
#include <vector>

inline void resetHost() { simhost::Host::instance().reset(); }

inline std::vector<std::string> hostCalls() {
    std::vector<std::string> texts;
    for (const simhost::Call& call : simhost::Host::instance().calls()) texts.push_back(call.str());
    return texts;
}

inline SparkFloatStruct floatRecord(float value, float min, float max) {
    SparkFloatStruct record{};
    record.Value = value;
    record.Min = min;
    record.Max = max;
    return record;
}
