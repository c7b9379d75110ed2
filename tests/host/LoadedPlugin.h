// Fixture for tests that drive the real plug-in through the simulated host:
// a fresh copy of the module (its globals start anew), a reset host, and
// message pauses switched off.
#pragma once

#include <SimHost.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

class LoadedPlugin : public testing::Test {
  protected:
    void SetUp() override {
        setenv("STRAIGHTLUX_SLEEP_SCALE", "0", 1);
        host().reset();
        std::string error;
        // What the plug-in object allocates at load lives as long as the
        // library and is not all given back at unload, by design.
#if defined(__SANITIZE_ADDRESS__)
        __lsan_disable();
#endif
        const bool loaded = plugin.load(STRAIGHTLUX_PLUGIN, &error, /*fresh=*/true);
#if defined(__SANITIZE_ADDRESS__)
        __lsan_enable();
#endif
        ASSERT_TRUE(loaded) << error;
    }

    static simhost::Host& host() { return simhost::Host::instance(); }

    // Runs SparkInitialise and returns what it printed.
    std::string initialise(const SparkInfoStruct& info, unsigned int* result = nullptr) {
        testing::internal::CaptureStdout();
        const unsigned int level = plugin.initialise(info);
        if (result) *result = level;
        return testing::internal::GetCapturedStdout();
    }

    // Selects "View: Input" (menu index 1 of control 24), under which the
    // plug-in copies its input unchanged, so frames show the driver's own
    // conversions.
    void showInputView() {
        SparkPupStruct* view = plugin.record<SparkPupStruct>("SparkPup24");
        ASSERT_NE(view, nullptr);
        view->Value = 1;
    }

    simhost::Plugin plugin;
};
