#include "ListControlZel.h"

namespace {
constexpr int kFirstItem = 1;  // plug-in item of the host's index 0
}

void ListControlZel::bind(int number, ZelListField field, ZelAuxList* saved) {
    bindNumber(number);
    field_ = field;
    saved_ = saved;
    if (saved_ != nullptr && field_.entryCount != nullptr) saved_->entryCount = *field_.entryCount;
}

void ListControlZel::Sync() {
    if (field_.index != nullptr) value = *field_.index + kFirstItem;
}

// Greyed out by shrinking the menu to its first entry; enabling restores the
// entry count saved at binding.
void ListControlZel::greyOut(bool disabled) {
    if (field_.entryCount != nullptr) {
        if (disabled) {
            *field_.entryCount = 1;
        } else if (saved_ != nullptr) {
            *field_.entryCount = saved_->entryCount;
        }
    }
    updateField(number_);
}

void ListControlZel::SetValue(double /*time*/, long item) {
    if (field_.index == nullptr) return;
    *field_.index = static_cast<int>(item - kFirstItem);
    updateField(number_);
    Sync();
}

void ListControlZel::GetValue(double /*time*/, long& item) {
    if (field_.index != nullptr) value = *field_.index + kFirstItem;
    item = value;
}
