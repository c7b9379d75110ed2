// Names and layout of the host's channels for the plug-in's animatable
// values: the page controls are type 1, the user float 93 is type 0.
#include "SparkEntryPoints.h"
#include "SparkText.h"

namespace {

struct ChannelName {
    int number;
    const char* name;
};

constexpr ChannelName kAnimatableChannels[] = {
    {6, "Radial1"},   {7, "Radial2"},   {8, "XCurvature"}, {9, "YCurvature"},
    {13, "Centre X"}, {14, "Centre Y"}, {16, "Squeeze"},   {18, "Magnify"},
};

constexpr int kFolderLevel = 1;
constexpr int kControlLevel = 2;
constexpr int kBlendChannel = 27;
constexpr int kAmplitudeChannel = 93;

}  // namespace

void RenameChannelEditorEntries(void) {
    for (const ChannelName& channel : kAnimatableChannels) {
        sparkSetControlName(SPARK_UI_CONTROL, channel.number, sparkText(channel.name));
    }
}

void SparkChannelEditor(void) {
    sparkCeAddFolder(kFolderLevel, sparkText("Lens"));
    for (const ChannelName& channel : kAnimatableChannels) {
        sparkCeAddControl(kControlLevel, SPARK_UI_CONTROL, channel.number);
    }
    sparkCeAddFolder(kFolderLevel, sparkText("Common"));
    sparkCeAddControl(kControlLevel, SPARK_UI_CONTROL, kBlendChannel);
    sparkCeAddControl(kControlLevel, SPARK_CE_CONTROL, kAmplitudeChannel);
}
