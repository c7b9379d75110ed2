// Animation channels: sparkGetCurveValuef and sparkSetCurveKey.
//
// A channel's value at a frame comes from a scripted function, else from its
// keys (straight lines between keys, the end values held beyond them), else
// from the current Value of the plug-in's float record of that number.
#include <cmath>
#include <iterator>

#include "CallText.h"
#include "ControlRecords.h"
#include "SimHost.h"

using simhost::argText;
using simhost::Host;

namespace simhost {

namespace {
// The Value of the plug-in's SparkFloatN, else its SparkUserFloatN; false when neither exists.
bool recordValue(const Plugin* plugin, int control, float* value) {
    if (!plugin || !plugin->loaded()) return false;
    if (auto* record = plugin->record<SparkFloatStruct>(recordSymbol("Float", control))) {
        *value = record->Value;
        return true;
    }
    if (auto* record = plugin->record<SparkUserFloatStruct>(recordSymbol("UserFloat", control))) {
        *value = record->Value;
        return true;
    }
    return false;
}

float keyedValue(const std::map<int, float>& keys, float frame) {
    const auto& first = *keys.begin();
    const auto& last = *keys.rbegin();
    if (std::isnan(frame) || frame <= static_cast<float>(first.first)) return first.second;
    if (frame >= static_cast<float>(last.first)) return last.second;
    // The key after frame exists and is not the first, since frame lies strictly inside.
    auto after = keys.upper_bound(static_cast<int>(std::floor(frame)));
    auto before = std::prev(after);
    const double t = (static_cast<double>(frame) - before->first) / (after->first - before->first);
    return static_cast<float>(before->second + t * (after->second - before->second));
}
}  // namespace

float Host::curveValue(int control, float frame) const {
    auto keys = curveKeys.find(control);
    if (keys != curveKeys.end() && !keys->second.empty()) return keyedValue(keys->second, frame);
    float value = 0.0f;
    if (recordValue(plugin, control, &value)) return value;
    return 0.0f;
}

}  // namespace simhost

extern "C" {

float sparkGetCurveValuef(int type, int controlNo, float frame) {
    Host& host = Host::instance();
    simhost::note("sparkGetCurveValuef", type, controlNo, frame);
    if (host.curveFn) return host.curveFn(type, controlNo, frame);
    return host.curveValue(controlNo, frame);
}

void sparkSetCurveKey(int type, int controlNo, int frame, float value) {
    Host& host = Host::instance();
    simhost::note("sparkSetCurveKey", type, controlNo, frame, value);
    host.curveKeys[controlNo][frame] = value;
}

}  // extern "C"
