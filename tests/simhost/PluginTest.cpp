// Loading a plug-in, finding its records and saving and loading its set-up.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "SimHost.h"

using simhost::Host;
using simhost::Plugin;

namespace {
std::string tempName(const std::string& stem) {
    return std::string("/tmp/simhost-test-") + std::to_string(getpid()) + "-" + stem;
}
}  // namespace

TEST(SimHostPlugin, LoadRefusesWhatIsNotAPlugin) {
    Host::instance().reset();
    std::string error;
    Plugin missing;
    EXPECT_FALSE(missing.load("/nonexistent/dir/none.spark", &error));
    EXPECT_NE(error.find("/nonexistent/dir/none.spark"), std::string::npos);
    EXPECT_FALSE(missing.loaded());

    const std::string textFile = tempName("text.spark");
    std::ofstream(textFile) << "not a library\n";
    Plugin text;
    error.clear();
    EXPECT_FALSE(text.load(textFile, &error));
    EXPECT_FALSE(error.empty());
    std::remove(textFile.c_str());

    Plugin noEntry;
    error.clear();
    EXPECT_FALSE(noEntry.load(SIMHOST_TEST_MODULE_NOINIT, &error));
    EXPECT_NE(error.find("SparkInitialise"), std::string::npos);
    EXPECT_EQ(Host::instance().plugin, nullptr);
}

TEST(SimHostPlugin, LoadsFindsRecordsAndCallsEntryPoints) {
    Host& host = Host::instance();
    host.reset();
    std::string error;
    {
        Plugin plugin;
        ASSERT_TRUE(plugin.load(SIMHOST_TEST_MODULE, &error)) << error;
        EXPECT_EQ(host.plugin, &plugin);

        const auto records = plugin.records();
        ASSERT_EQ(records.size(), 2u);
        EXPECT_EQ(records[0].symbol, "SparkFloat6");
        EXPECT_EQ(records[0].kind, "Float");
        EXPECT_EQ(records[0].number, 6);
        EXPECT_EQ(records[1].symbol, "SparkPup17");
        EXPECT_EQ(records[1].address, plugin.symbol("SparkPup17"));
        EXPECT_EQ(plugin.record<SparkFloatStruct>("SparkFloat6")->Value, 0.5f);

        // The module's host calls resolve to this process.
        const SparkInfoStruct info = host.makeInfo(5, 4, 24, 7);
        const unsigned int first = plugin.initialise(info);
        EXPECT_TRUE(host.called("sparkMessage(module loaded)"));
        EXPECT_EQ(plugin.clips(), 0);  // absent entry points do nothing
        EXPECT_EQ(plugin.process(info), nullptr);

        EXPECT_EQ(plugin.callback("SparkFloat6", 1, info), nullptr);
        EXPECT_TRUE(host.called("sparkControlUpdate(1007)"));
        EXPECT_EQ(plugin.callback("SparkPup17", 1, info), nullptr);  // no callback set

        // With no keys, a channel reads the record's current value.
        plugin.record<SparkFloatStruct>("SparkFloat6")->Value = 0.25f;
        EXPECT_EQ(sparkGetCurveValuef(1, 6, 1.0f), 0.25f);

        // A fresh copy has its own statics; a plain second load shares them.
        Plugin fresh;
        ASSERT_TRUE(fresh.load(SIMHOST_TEST_MODULE, &error, true)) << error;
        EXPECT_EQ(fresh.initialise(info), 1u);
        EXPECT_EQ(fresh.record<SparkFloatStruct>("SparkFloat6")->Value, 0.5f);
        Plugin shared;
        ASSERT_TRUE(shared.load(SIMHOST_TEST_MODULE, &error)) << error;
        EXPECT_EQ(shared.initialise(info), first + 1);
    }
    EXPECT_EQ(host.plugin, nullptr);
}

TEST(SimHostPlugin, SetupFilesRoundTripAndMissingFileChangesNothing) {
    Host& host = Host::instance();
    host.reset();
    host.setupFiles = true;
    std::string error;
    Plugin plugin;
    ASSERT_TRUE(plugin.load(SIMHOST_TEST_MODULE, &error, true)) << error;
    auto* radial = plugin.record<SparkFloatStruct>("SparkFloat6");
    auto* menu = plugin.record<SparkPupStruct>("SparkPup17");

    const std::string name = tempName("round.setup");
    radial->Value = 0.1f;  // not exact in binary: must come back bit for bit
    menu->Value = 2;
    host.curveKeys[93] = {{1, 0.5f}, {4, -2.0f}};
    sparkSaveSetup(const_cast<char*>(name.c_str()));
    EXPECT_EQ(host.setupError, "");

    radial->Value = 2.0f;
    menu->Value = 0;
    host.curveKeys.clear();
    sparkLoadSetup(const_cast<char*>(name.c_str()));
    EXPECT_EQ(host.setupError, "");
    EXPECT_EQ(radial->Value, 0.1f);
    EXPECT_EQ(menu->Value, 2);
    EXPECT_EQ(host.curveKeys[93], (std::map<int, float>{{1, 0.5f}, {4, -2.0f}}));
    std::remove(name.c_str());

    radial->Value = 3.0f;
    sparkLoadSetup(const_cast<char*>(name.c_str()));  // now gone
    EXPECT_NE(host.setupError, "");
    EXPECT_EQ(radial->Value, 3.0f);
    EXPECT_EQ(host.curveKeys[93].size(), 2u);

    // Off, set-ups are only recorded.
    host.setupFiles = false;
    host.setupError.clear();
    sparkSaveSetup(const_cast<char*>(name.c_str()));
    EXPECT_NE(access(name.c_str(), F_OK), 0);
    EXPECT_EQ(host.count("sparkSaveSetup"), 2);
    EXPECT_EQ(host.count("sparkLoadSetup"), 2);
}
