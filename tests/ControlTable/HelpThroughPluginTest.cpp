// The "Help" button through the real plug-in, with a stand-in browser that
// records the arguments it was started with. Hostile values of DIR_ZEL and
// ZEL_HELP_BROWSER must reach the browser literally and run nothing else.
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "host/LoadedPlugin.h"

namespace {

const char kEndMark[] = "--end--";

// The variable's value, or a marker that it was unset, so it can be put back.
struct SavedVariable {
    explicit SavedVariable(const char* n) : name(n) {
        const char* v = std::getenv(n);
        wasSet = v != nullptr;
        if (wasSet) value = v;
    }
    ~SavedVariable() {
        if (wasSet) {
            setenv(name, value.c_str(), 1);
        } else {
            unsetenv(name);
        }
    }
    const char* name;
    bool wasSet = false;
    std::string value;
};

}  // namespace

class HelpThroughPlugin : public LoadedPlugin {
  protected:
    void SetUp() override {
        LoadedPlugin::SetUp();
        char pattern[] = "/tmp/straightlux-help-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir = pattern;
        log = dir + "/args.log";
    }
    void TearDown() override { std::filesystem::remove_all(dir); }

    // A browser that writes each argument on a line of the log, then an end mark.
    void makeStandIn(const std::string& path) {
        std::ofstream script(path);
        script << "#!/bin/sh\nfor a in \"$@\"; do printf '%s\\n' \"$a\" >> '" << log
               << "'; done\nprintf '%s\\n' '" << kEndMark << "' >> '" << log << "'\n";
        script.close();
        chmod(path.c_str(), 0755);
    }

    // Presses "Help" and returns the arguments the browser received.
    std::vector<std::string> pressHelp() {
        host().clearCalls();
        EXPECT_EQ(plugin.callback("SparkPush31", 1, host().makeInfo(8, 6, 24)), nullptr);
        std::vector<std::string> args;
        for (int attempt = 0; attempt < 200; ++attempt) {
            std::ifstream in(log);
            args.clear();
            for (std::string line; std::getline(in, line);) {
                if (line == kEndMark) return args;
                args.push_back(line);
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        ADD_FAILURE() << "the stand-in browser did not run";
        return {};
    }

    std::vector<std::string> expectedArgs(const std::string& installDir) {
        return {"-geometry", "+50+50", "file:" + installDir + "/dl/help/straightlux.htm"};
    }

    SavedVariable savedPath{"PATH"};
    SavedVariable savedInstall{"DIR_ZEL"};
    SavedVariable savedBrowser{"ZEL_HELP_BROWSER"};
    std::string dir;
    std::string log;
};

TEST_F(HelpThroughPlugin, DefaultsAndOrdinaryValuesGiveTheUsualCommand) {
    makeStandIn(dir + "/firefox");
    setenv("PATH", (dir + ":" + savedPath.value).c_str(), 1);
    unsetenv("DIR_ZEL");
    unsetenv("ZEL_HELP_BROWSER");
    EXPECT_EQ(pressHelp(), expectedArgs("/usr/local/Marrowby"));
    EXPECT_EQ(host().count("sparkError"), 0);

    std::filesystem::remove(log);
    makeStandIn(dir + "/browser");
    setenv("ZEL_HELP_BROWSER", (dir + "/browser").c_str(), 1);
    setenv("DIR_ZEL", (dir + "/install").c_str(), 1);
    EXPECT_EQ(pressHelp(), expectedArgs(dir + "/install"));
}

TEST_F(HelpThroughPlugin, HostileValuesReachTheBrowserLiterallyAndRunNothingElse) {
    // Relative markers land in the working directory, which is dir meanwhile.
    const std::filesystem::path oldCwd = std::filesystem::current_path();
    std::filesystem::current_path(dir);
    const std::string browserDir = dir + "/b r;touch m1;$(touch m2)`touch m3`'q\"&";
    std::filesystem::create_directory(browserDir);
    makeStandIn(browserDir + "/browser");
    const std::string installDir =
        "/x y;touch " + dir + "/m4;$(touch " + dir + "/m5)`touch " + dir + "/m6`'\"|";
    setenv("ZEL_HELP_BROWSER", (browserDir + "/browser").c_str(), 1);
    setenv("DIR_ZEL", installDir.c_str(), 1);

    EXPECT_EQ(pressHelp(), expectedArgs(installDir));
    EXPECT_EQ(host().count("sparkError"), 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    for (const char* marker : {"m1", "m2", "m3", "m4", "m5", "m6"})
        EXPECT_FALSE(std::filesystem::exists(dir + "/" + marker)) << marker;
    std::filesystem::current_path(oldCwd);
}

TEST_F(HelpThroughPlugin, AValueTooLongForTheCommandIsReportedAsAFailure) {
    setenv("ZEL_HELP_BROWSER", std::string(40000, 'b').c_str(), 1);
    host().clearCalls();
    EXPECT_EQ(plugin.callback("SparkPush31", 1, host().makeInfo(8, 6, 24)), nullptr);
    EXPECT_TRUE(
        host().called("sparkError(Error in opening help file (failed to spawn netscape process))"));
}
