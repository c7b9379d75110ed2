// ControlNames: the plug-in's control records, named the way the host shows
// them, so that they can be listed and set from the command line.
//
// Names: a float or integer field is named by its title's text before ':'
// ("Radial1: %.3f" is "Radial1"); a menu by the text before ':' of its entries
// ("Sampling: Cubic  " is menu "Sampling", value "Cubic"), its values being the
// entry texts after ": " without trailing blanks; a menu without a prefix
// whose entries are "FULL", "1/2", "1/3", ... (the proxy resolution) is
// "Proxy"; a check box or text field by its
// title. Every control also answers to its symbol ("SparkFloat6" or "Float6").
// Matching ignores case and surrounding blanks. Values are checked against the
// record's Min..Max (when Min < Max) or its menu entries before anything is
// written; push buttons hold no value and cannot be set.
//
// Values are written straight into the records, as a host restores a set-up;
// no callback is called. Animation keys go into the simulated host's curves,
// and before each frame every keyed float record gets its curve's value.
#pragma once

#include <SimHost.h>

#include <string>
#include <utility>
#include <vector>

#include "RunStatus.h"

enum class ControlKind { Float, Integer, Menu, Check, Text, Colour, Button };

struct Control {
    ControlKind kind = ControlKind::Float;
    std::string recordKind;  // "Float", "UserFloat", "Pup", ...
    int number = 0;
    std::string symbol;  // "SparkFloat6"
    void* record = nullptr;
    std::string name;
    std::vector<std::string> entries;  // menus: the value text of each entry
};

class ControlNames {
  public:
    explicit ControlNames(const std::vector<simhost::Plugin::RecordRef>& records);

    const std::vector<Control>& controls() const { return controls_; }

    // The settable control called name; a usage failure listing the valid
    // names when there is none or several.
    RunStatus find(const std::string& name, const Control** control) const;

    // The control of this kind whose name is name (ignoring case), buttons
    // included; null when there is none.
    const Control* named(const std::string& name, ControlKind kind) const;

    // "Name=Value": checks and writes the value; *control tells which it was.
    RunStatus set(const std::string& assignment, const Control** control) const;

    // "Name@Frame=Value": checks the key of an animatable float control.
    RunStatus parseKey(const std::string& text, const Control** control, int* frame,
                       float* value) const;

    // Each keyed float control with its record's current Value.
    std::vector<std::pair<const Control*, float>> keyedValues(const simhost::Host& host) const;
    // Writes a float control's record Value.
    void setValue(const Control& control, float value) const;

    // Writes each keyed float record's Value := its curve at frame; returns
    // "Name=value" for each, blank-separated, for the verbose log.
    std::string applyCurves(const simhost::Host& host, unsigned frame) const;

    // The current value as the host would show it ("0.000", "Cubic", "on").
    std::string valueText(const Control& control) const;

    // One line per control: name, value, range or entries, symbol.
    std::string listing() const;

  private:
    RunStatus assign(const Control& control, const std::string& value) const;
    std::string validNames() const;

    std::vector<Control> controls_;
};
