// The Help button through the real plug-in, with a stand-in browser that
// logs its arguments. Hostile values of DIR_ZEL and ZEL_HELP_BROWSER must
// reach the browser literally and run nothing else.
#include <sys/stat.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "host/LoadedPlugin.h"

namespace fs = std::filesystem;

class HelpThroughPlugin : public LoadedPlugin {
  protected:
    void SetUp() override {
        LoadedPlugin::SetUp();
        char pattern[] = "/tmp/straightlux-help-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir = pattern;
        oldCwd = fs::current_path();
        fs::current_path(dir);  // where relative markers would land
    }
    void TearDown() override {
        setenv("PATH", path.c_str(), 1);
        unsetenv("DIR_ZEL");
        unsetenv("ZEL_HELP_BROWSER");
        fs::current_path(oldCwd);
        fs::remove_all(dir);
    }

    // A browser that logs each argument on a line, then "end".
    void makeStandIn(const std::string& file) {
        fs::remove(dir + "/log");
        std::ofstream(file) << "#!/bin/sh\nfor a in \"$@\"; do echo \"$a\" >> " << dir
                            << "/log; done\necho end >> " << dir << "/log\n";
        chmod(file.c_str(), 0755);
    }

    // Presses "Help"; the arguments the browser got.
    std::vector<std::string> pressHelp() {
        fs::remove(dir + "/log");
        host().clearCalls();
        EXPECT_EQ(plugin.callback("SparkPush31", 1, host().makeInfo(8, 6, 24)), nullptr);
        for (int attempt = 0; attempt < 200; ++attempt) {
            std::ifstream in(dir + "/log");
            std::vector<std::string> args;
            for (std::string line; std::getline(in, line);) {
                if (line == "end") return args;
                args.push_back(line);
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return {"the browser did not run"};
    }

    static std::vector<std::string> expected(const std::string& installDir) {
        return {"-geometry", "+50+50", "file:" + installDir + "/dl/help/straightlux.htm"};
    }

    std::string path = std::getenv("PATH") ? std::getenv("PATH") : "";
    std::string dir;
    fs::path oldCwd;
};

TEST_F(HelpThroughPlugin, UnsetAndOrdinaryValuesGiveTheUsualCommand) {
    makeStandIn(dir + "/firefox");
    setenv("PATH", (dir + ":" + path).c_str(), 1);
    EXPECT_EQ(pressHelp(), expected("/usr/local/Marrowby"));

    makeStandIn(dir + "/browser");
    setenv("ZEL_HELP_BROWSER", (dir + "/browser").c_str(), 1);
    setenv("DIR_ZEL", (dir + "/install").c_str(), 1);
    EXPECT_EQ(pressHelp(), expected(dir + "/install"));
    EXPECT_EQ(host().count("sparkError"), 0);

    // Empty values count as unset.
    setenv("ZEL_HELP_BROWSER", "", 1);
    setenv("DIR_ZEL", "", 1);
    EXPECT_EQ(pressHelp(), expected("/usr/local/Marrowby"));
    EXPECT_EQ(host().count("sparkError"), 0);

    // A browser that cannot be started is the help's failure.
    for (const std::string& browser :
         {std::string(40000, 'b'), std::string("no-such-browser-anywhere")}) {
        setenv("ZEL_HELP_BROWSER", browser.c_str(), 1);
        host().clearCalls();
        plugin.callback("SparkPush31", 1, host().makeInfo(8, 6, 24));
        EXPECT_TRUE(host().called(
            "sparkError(Error in opening help file (failed to spawn netscape process))"));
    }
}

// Values that a shell would have read as an assignment, an option or a
// command of its own start no program: there is no shell.
TEST_F(HelpThroughPlugin, ShellLikeBrowsersRunNothing) {
    const std::string script = dir + "/script";
    std::ofstream(script) << "touch " << dir << "/m7\n";
    chmod(script.c_str(), 0755);
    setenv("DIR_ZEL", script.c_str(), 1);
    for (const char* browser : {"eval", "NAME=value", "-geometry", "sh -c"}) {
        setenv("ZEL_HELP_BROWSER", browser, 1);
        host().clearCalls();
        plugin.callback("SparkPush31", 1, host().makeInfo(8, 6, 24));
        EXPECT_EQ(host().count("sparkError"), 1) << browser;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_FALSE(fs::exists(dir + "/m7"));
}

// Unquoted, these values would parse and create every marker.
TEST_F(HelpThroughPlugin, HostileValuesReachTheBrowserLiterallyAndRunNothingElse) {
    const std::string browserDir = dir + "/b r;touch m1;$(touch m2)`touch m3`";
    fs::create_directory(browserDir);
    makeStandIn(browserDir + "/browser");
    const std::string installDir = "/x y;touch m4;$(touch m5)`touch m6`'q'\"d\"";
    setenv("ZEL_HELP_BROWSER", (browserDir + "/browser").c_str(), 1);
    setenv("DIR_ZEL", installDir.c_str(), 1);

    EXPECT_EQ(pressHelp(), expected(installDir));
    EXPECT_EQ(host().count("sparkError"), 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    for (const char* marker : {"m1", "m2", "m3", "m4", "m5", "m6"})
        EXPECT_FALSE(fs::exists(dir + "/" + marker)) << marker;
}
