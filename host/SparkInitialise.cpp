// Start-up: interface check, bit-depth mode, set-up, banner and buffer check,
// control binding, page and channel titles.
#include <cstdio>

#include "BuildInfo.h"
#include "ControlBinding.h"
#include "EntryGuard.h"
#include "HostBindingGlobals.h"
#include "HostServices.h"
#include "PluginInstance.h"
#include "SparkEntryPoints.h"
#include "SparkText.h"
#include "StartupBanner.h"

namespace {

// Frame depths, in bits per pixel, of the host's 12-bit modes.
constexpr int kDepth12Rgb = 48;
constexpr int kDepth12Rgba = 64;

constexpr int kPageMain = 0;
constexpr int kPageImport = 3;
constexpr unsigned int kModuleLevel = SPARK_MODULE;

}  // namespace

namespace {

unsigned int initialise(SparkInfoStruct& info) {
    installHostServices();
    if (sparkAPIVersionInfo() < kMinimumApiVersion) {
        // Only a warning: start-up goes on regardless, deliberately.
        char message[256];
        std::snprintf(message, sizeof message,
                      "This version of \"%s\" needs IFFFS 7.0/4.0 (sparks API 4.0) or higher.",
                      kPluginName);
        sparkError(message);
    }
    deep12 = (info.FrameDepth == kDepth12Rgb || info.FrameDepth == kDepth12Rgba) ? 1 : 0;
    sparkLoadSetup(info.Name);
    printStartupBanner(info, kPluginName, kBuffersNeeded8, kBuffersNeeded12, kPluginMinorVersion,
                       kBuildKind);
    bindControls(Instance.info);
    sparkControlTitle(kPageImport, sparkText("Import AIFF"));
    sparkControlTitle(kPageMain, sparkText("Straightlux"));
    sparkClipControlTitle(SPARK_FRONT_CLIP, sparkText("Input"));
    DL_Sync_Ctrl = 1;
    RenameChannelEditorEntries();
    return kModuleLevel;
}

}  // namespace

unsigned int SparkInitialise(SparkInfoStruct info) {
    return guardedEntry(static_cast<unsigned int>(kModuleLevel),
                        [&info] { return initialise(info); });
}
