// ControlAssignments: "--set NAME=VALUE" and "--key NAME@FRAME=VALUE" given
// to a started session, applied to its control records and curves.
//
// Sets apply first, in order, then keys. A control set here drops the keys a
// loaded set-up gave it; a keyed control loses its set-up keys and takes only
// the keys given here; a float control may not be both set and keyed.
#pragma once

#include <string>
#include <vector>

#include "ControlNames.h"
#include "RunStatus.h"

RunStatus applyControlValues(const std::vector<std::string>& sets,
                             const std::vector<std::string>& keys, const ControlNames& controls);
