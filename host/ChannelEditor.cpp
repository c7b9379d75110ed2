// Names and layout of the host's channels for the plug-in's animatable
// values: the page controls are type 1, the user float 93 is type 0.
#include "EntryGuard.h"
#include "SparkEntryPoints.h"
#include "SparkText.h"
#include "StraightluxControlTable.h"

namespace {

constexpr int kFolderLevel = 1;
constexpr int kControlLevel = 2;

}  // namespace

void RenameChannelEditorEntries(void) {
    guardedCall([] {
        for (const ControlDescriptor* channel : kLensChannels) {
            sparkSetControlName(SPARK_UI_CONTROL, channel->number, sparkText(channel->channelName));
        }
    });
}

void SparkChannelEditor(void) {
    guardedCall([] {
        sparkCeAddFolder(kFolderLevel, sparkText("Lens"));
        for (const ControlDescriptor* channel : kLensChannels) {
            sparkCeAddControl(kControlLevel, SPARK_UI_CONTROL, channel->number);
        }
        sparkCeAddFolder(kFolderLevel, sparkText("Common"));
        sparkCeAddControl(kControlLevel, SPARK_UI_CONTROL, kBlendControl.number);
        sparkCeAddControl(kControlLevel, SPARK_CE_CONTROL, kAmplitudeControl.number);
    });
}
