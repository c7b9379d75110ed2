#include "HelpTopic.h"

#include <cstdio>
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

// A single-quoted word may grow to four characters per quote in the value.
constexpr std::size_t kWordCapacity = 4 * FILENAME_MAX + 3;
constexpr std::size_t kCommandCapacity = 2 * kWordCapacity + 64;
constexpr int kCommandFailed = -1;

// Characters that mean nothing to the shell and need no quoting.
bool isOrdinary(const char* value) {
    for (const char* c = value; *c != '\0'; ++c) {
        if (std::strchr("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_./:+,@%=-",
                        *c) == nullptr) {
            return false;
        }
    }
    return true;
}

bool fits(int written, std::size_t size) {
    return written >= 0 && static_cast<std::size_t>(written) < size;
}

// The value as one shell word: as it stands when ordinary, otherwise inside
// single quotes, each quote of its own written as '\''.
bool shellWord(char* word, std::size_t size, const char* value) {
    if (isOrdinary(value)) return fits(std::snprintf(word, size, "%s", value), size);
    std::size_t n = 0;
    auto put = [&](const char* text) {
        const std::size_t length = std::strlen(text);
        if (n + length >= size) return false;
        std::memcpy(word + n, text, length);
        n += length;
        return true;
    };
    if (!put("'")) return false;
    for (const char* c = value; *c != '\0'; ++c) {
        const char single[2] = {*c, '\0'};
        if (!put(*c == '\'' ? "'\\''" : single)) return false;
    }
    if (!put("'")) return false;
    word[n] = '\0';
    return true;
}

}  // namespace

bool buildHelpCommand(char* command, std::size_t size, const char* browser, const char* installDir,
                      const char* topic) {
    if (command == nullptr || size == 0) return false;
    command[0] = '\0';
    if (browser == nullptr || installDir == nullptr || topic == nullptr) return false;

    char helpDir[FILENAME_MAX];
    if (!fits(std::snprintf(helpDir, sizeof helpDir, "%s/dl/help", installDir), sizeof helpDir)) {
        return false;
    }

    // The topic without its last extension; a leading dot starts no extension.
    static char topicBase[FILENAME_MAX];
    if (!fits(std::snprintf(topicBase, sizeof topicBase, "%s", topic), sizeof topicBase)) {
        topicBase[0] = '\0';
        return false;
    }
    char* dot = std::strrchr(topicBase, '.');
    if (dot != nullptr && dot != topicBase) *dot = '\0';

    char address[2 * FILENAME_MAX];
    if (!fits(std::snprintf(address, sizeof address, "file:%s/%s.htm", helpDir, topicBase),
              sizeof address)) {
        return false;
    }

    char browserWord[kWordCapacity];
    char addressWord[kWordCapacity];
    if (!shellWord(browserWord, sizeof browserWord, browser) ||
        !shellWord(addressWord, sizeof addressWord, address)) {
        return false;
    }
    if (!fits(std::snprintf(command, size, "%s %s %s %s &", browserWord, kGeometryOption,
                            kWindowPlace, addressWord),
              size)) {
        command[0] = '\0';
        return false;
    }
    return true;
}

int display_help_topic(const char* topic) {
    const char* installDir = std::getenv(kInstallDirVariable);
    if (installDir == nullptr) installDir = kDefaultInstallDir;
    const char* browser = std::getenv(kBrowserVariable);
    if (browser == nullptr) browser = kDefaultBrowser;

    static char command[kCommandCapacity];
    if (!buildHelpCommand(command, sizeof command, browser, installDir, topic)) {
        return kCommandFailed;
    }
    return std::system(command);
}

unsigned long* HelpCB(int, SparkInfoStruct) {
    return guardedCallback([] {
        if (display_help_topic(kHelpTopic) != 0) sparkError(sparkText(kHelpFailure));
        return static_cast<unsigned long*>(nullptr);
    });
}
