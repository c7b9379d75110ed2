#include "HelpTopic.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "EntryGuard.h"
#include "SparkText.h"

namespace {

constexpr const char* kInstallDirVariable = "DIR_ZEL";
constexpr const char* kBrowserVariable = "ZEL_HELP_BROWSER";
constexpr const char* kDefaultInstallDir = "/usr/local/Marrowby";
constexpr const char* kDefaultBrowser = "firefox";
constexpr const char* kGeometryOption = "-geometry";
constexpr const char* kWindowPlace = "+50+50";
constexpr const char* kHelpFailure =
    "Error in opening help file (failed to spawn netscape process)";
constexpr int kLaunchFailed = -1;

// The variable's value, or the default when it is unset or empty.
const char* settingOr(const char* variable, const char* fallback) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0' ? value : fallback;
}

// Starts the browser in a short-lived child that exits as soon as the spawn
// has answered, so the browser is adopted by init: the host neither waits
// for it nor collects it. The child's exit status says whether it started.
int launchDetached(const std::vector<std::string>& arguments) {
    std::vector<char*> argv;
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    const pid_t child = fork();
    if (child < 0) return kLaunchFailed;
    if (child == 0) {
        pid_t browser = 0;
        const int started = posix_spawnp(&browser, argv[0], nullptr, nullptr, argv.data(), environ);
        _exit(started == 0 ? 0 : 1);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) return kLaunchFailed;
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? 0 : kLaunchFailed;
}

}  // namespace

bool buildHelpArguments(std::vector<std::string>& arguments, const char* browser,
                        const char* installDir, const char* topic) {
    arguments.clear();
    if (browser == nullptr || installDir == nullptr || topic == nullptr || *browser == '\0') {
        return false;
    }
    // The topic without its last extension, kept in a static buffer; a leading
    // dot starts no extension.
    static char topicBase[FILENAME_MAX];
    if (std::strlen(topic) >= sizeof topicBase) return false;
    std::strcpy(topicBase, topic);
    char* dot = std::strrchr(topicBase, '.');
    if (dot != nullptr && dot != topicBase) *dot = '\0';

    const std::string address =
        std::string("file:") + installDir + "/dl/help/" + topicBase + ".htm";
    // A path the system could not open is refused rather than cut.
    if (std::strlen(browser) >= FILENAME_MAX || address.size() >= 2 * FILENAME_MAX) return false;
    arguments = {browser, kGeometryOption, kWindowPlace, address};
    return true;
}

int display_help_topic(const char* topic) {
    std::vector<std::string> arguments;
    if (!buildHelpArguments(arguments, settingOr(kBrowserVariable, kDefaultBrowser),
                            settingOr(kInstallDirVariable, kDefaultInstallDir), topic)) {
        return kLaunchFailed;
    }
    return launchDetached(arguments);
}

unsigned long* HelpCB(int, SparkInfoStruct) {
    return guardedCallback([] {
        if (display_help_topic(kHelpTopic) != 0) sparkError(sparkText(kHelpFailure));
        return static_cast<unsigned long*>(nullptr);
    });
}
