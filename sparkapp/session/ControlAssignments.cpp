// Applying --set and --key to the simulated host's records and curves.
#include "ControlAssignments.h"

#include <SimHost.h>

#include <set>

RunStatus applyControlValues(const std::vector<std::string>& sets,
                             const std::vector<std::string>& keys, const ControlNames& controls) {
    simhost::Host& host = simhost::Host::instance();
    std::set<int> setFloats;
    for (const std::string& assignment : sets) {
        const Control* control = nullptr;
        RunStatus status = controls.set(assignment, &control);
        if (!status.ok()) return status;
        if (control->kind == ControlKind::Float) {
            host.curveKeys.erase(control->number);
            setFloats.insert(control->number);
        }
    }
    std::set<int> keyed;
    for (const std::string& text : keys) {
        const Control* control = nullptr;
        int frame = 0;
        float value = 0.0f;
        RunStatus status = controls.parseKey(text, &control, &frame, &value);
        if (!status.ok()) return status;
        if (setFloats.count(control->number))
            return RunStatus::failure(
                ExitCode::Usage, control->name + " has both --set and --key: give it keys only");
        if (keyed.insert(control->number).second) host.curveKeys.erase(control->number);
        host.curveKeys[control->number][frame] = value;
    }
    return RunStatus::success();
}
