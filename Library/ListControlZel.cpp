#include "ListControlZel.h"

namespace {
constexpr int kFirstItem = 1;  // plug-in item of the host's index 0
}

void ListControlZel::Bind(int number, SparkPupStruct* record, ZelAuxList* saved) {
    ControlZel::Bind(number, record, saved);
    if (record != nullptr && saved != nullptr) saved->entryCount = record->TitleCount;
}

void ListControlZel::Sync() {
    if (record() != nullptr) value = record()->Value + kFirstItem;
}

// Greyed out by shrinking the menu to its first entry; enabling restores the
// entry count saved at binding.
void ListControlZel::Disable(bool disabled) {
    if (disabled_ == disabled) {
        disabled_ = disabled;
        return;
    }
    auto* saved = static_cast<ZelAuxList*>(second_);
    if (record() != nullptr) {
        if (disabled) {
            record()->TitleCount = 1;
        } else if (saved != nullptr) {
            record()->TitleCount = saved->entryCount;
        }
    }
    UpdateField(number_);
    disabled_ = disabled;
}

void ListControlZel::Hide(bool hidden) {
    hidden_ = hidden;
    ShowField(number_, hidden);
}

void ListControlZel::SetValue(double /*time*/, long item) {
    if (record() == nullptr) return;
    record()->Value = static_cast<int>(item - kFirstItem);
    UpdateField(number_);
    Sync();
}

void ListControlZel::GetValue(double /*time*/, long& item) {
    if (record() != nullptr) value = record()->Value + kFirstItem;
    item = value;
}
