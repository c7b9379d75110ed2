#include "StartupBanner.h"

#include <cstdio>
#include <string>

#include "BuildInfo.h"
#include "HostBindingGlobals.h"
#include "SparkText.h"
#include "ZelSleep.h"

namespace {

constexpr int kRuleLength = 51;
constexpr int kGiveUpPauseSeconds = 5;

const char* buildKindWord(int buildKind) {
    if (buildKind == kBuildKindNative) return "NATIVE";
    if (buildKind == kBuildKindUcapi) return "UCAPI";
    return " ";
}

}  // namespace

void printStartupBanner(SparkInfoStruct, const char* pluginName, int buffersNeeded8,
                        int buffersNeeded12, const char* minorVersion, int buildKind) {
    const std::string equalsRule(kRuleLength, '=');
    const std::string plusRule(kRuleLength, '+');

    char banner[512];
    std::snprintf(banner, sizeof banner, "%s %s.%s %s %s for Discreet %s\n    %s  Built %s at %s",
                  kMakerName, kPluginVersion, minorVersion, kFrameworkName, pluginName,
                  kHostVersionText, buildKindWord(buildKind), kBuildDate, kBuildTime);
    std::puts(equalsRule.c_str());
    std::puts(banner);
    std::puts(equalsRule.c_str());
    std::fflush(stdout);

    std::puts(deep12 ? "... 12 bit mode selected." : "... 8-10 bit mode selected.");
    std::fflush(stdout);

    const int available = sparkMemGetFreeMemory();
    std::printf("Available buffers = %d\n", available);
    std::puts(plusRule.c_str());
    std::puts("");

    const int needed = deep12 ? buffersNeeded12 : buffersNeeded8;
    if (available < needed) {
        std::printf("ERROR: we need %d image buffers, but we only got %d.\n", needed, available);
        std::puts("... Processing will be turned off ...");
        std::fflush(stdout);
        sparkMessage(sparkText("Insufficient image buffers available! Giving up!"));
        zelSleepSeconds(kGiveUpPauseSeconds);
        no_buffers = 1;
    } else {
        no_buffers = 0;
    }
}
