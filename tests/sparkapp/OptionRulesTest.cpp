// The command line and the option rules: each value an option refuses, and
// each rule on which options go together, with the message a user reads.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "OptionRules.h"

namespace {

// The status of parsing then validating a command line ("sparkrun" first).
RunStatus check(std::vector<std::string> words, RunOptions* parsed = nullptr) {
    words.insert(words.begin(), "sparkrun");
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(&word[0]);
    argv.push_back(nullptr);
    RunOptions options;
    RunStatus status = parseCommandLine(static_cast<int>(words.size()), argv.data(), &options);
    if (status.ok()) status = validate(options);
    if (parsed) *parsed = options;
    return status;
}

// The usage message, or "<fine>" when the command line is accepted.
std::string refusal(const std::vector<std::string>& words) {
    const RunStatus status = check(words);
    if (status.ok()) return "<fine>";
    EXPECT_EQ(status.code, ExitCode::Usage) << status.message;
    return status.message;
}

}  // namespace

TEST(CommandLine, ValuesAndTheirRefusals) {
    RunOptions options;
    ASSERT_TRUE(check({"--depth=12", "--threads", "3", "--set", "Radial1=-0.08", "--set",
                       "Blend=20", "--key", "Radial1@10=0.1", "--max-memory", "2G", "--depth", "8",
                       "in.png", "--", "-out.png"},
                      &options)
                    .ok());
    EXPECT_EQ(options.depth, 24);  // the last --depth counts
    EXPECT_EQ(options.processors, 3);
    EXPECT_EQ(options.sets, (std::vector<std::string>{"Radial1=-0.08", "Blend=20"}));
    EXPECT_EQ(options.keys, (std::vector<std::string>{"Radial1@10=0.1"}));
    EXPECT_EQ(options.maxMemory, 2ull << 30);
    EXPECT_EQ(options.files, (std::vector<std::string>{"in.png", "-out.png"}));

    EXPECT_EQ(refusal({"--depth", "10"}), "--depth takes 8 or 12, not \"10\"");
    EXPECT_EQ(refusal({"--threads", "65"}), "--threads takes 1 to 64");
    EXPECT_EQ(refusal({"--max-memory", "12Q"}),
              "--max-memory takes a size such as 512M or 8G, not \"12Q\"");
    EXPECT_EQ(refusal({"--float-encoding", "gamma"}),
              "--float-encoding takes linear or log, not \"gamma\"");
    EXPECT_EQ(refusal({"--size", "10", "--make-chart", "c.png"}),
              "--size takes WIDTHxHEIGHT, not \"10\"");
    EXPECT_EQ(refusal({"--margin", "many", "--compare", "a", "b"}),
              "--margin takes a percentage, not \"many\"");
    EXPECT_EQ(refusal({"--frobnicate=1", "a", "b"}), "unknown option --frobnicate");
    EXPECT_EQ(refusal({"-x"}), "unknown option -x");
    EXPECT_EQ(refusal({"--verbose=yes"}), "--verbose takes no value");
    EXPECT_EQ(refusal({"in.png", "out.png", "--setup"}), "--setup needs a value");
    EXPECT_TRUE(check({"--help", "--make-chart"}).ok());  // help wins over everything
}

TEST(OptionRules, EachRuleWithItsMessage) {
    EXPECT_EQ(refusal({"--make-chart", "c.png", "--compare"}),
              "--compare cannot be combined with another mode option");
    EXPECT_EQ(refusal({"--make-chart"}), "--make-chart takes one OUTPUT");
    EXPECT_EQ(refusal({"--side-by-side", "a", "b"}), "--side-by-side takes LEFT RIGHT OUTPUT");
    EXPECT_EQ(refusal({"--compare", "a"}), "--compare takes two pictures");
    EXPECT_EQ(refusal({"--trace-chart", "a"}), "--trace-chart takes IMAGE LINES.json");
    EXPECT_EQ(refusal({"--list-controls", "a"}), "--list-controls takes no INPUT or OUTPUT");
    EXPECT_EQ(refusal({"in.png"}), "give one INPUT and one OUTPUT");
    EXPECT_EQ(refusal({}), "give one INPUT and one OUTPUT");
    EXPECT_EQ(refusal({"--save-setup", "s.setup"}), "<fine>");  // saves the controls alone
    const std::string longName(4096, 's');
    EXPECT_EQ(refusal({"--setup", longName, "a", "b"}),
              "set-up file name too long (at most 4095 bytes): " + longName);
    EXPECT_EQ(refusal({"--autofind", "--list-controls"}),
              "--lines, --autofind and --overlay work on an INPUT and OUTPUT");
    EXPECT_EQ(refusal({"in.png", "out.##.##.png"}),
              "more than one frame number mark in out.##.##.png");
    EXPECT_EQ(refusal({"--frames", "5-2", "in.png", "out.#.png"}),
              "bad frame range \"5-2\": use A-B with 0 <= A <= B, or one frame");
    EXPECT_EQ(refusal({"--frames", "1-3", "in.png", "out.png"}),
              "several frames need a sequence output name (with # or %04d)");
    EXPECT_EQ(refusal({"--frames", "3", "in.png", "out.png"}), "<fine>");
    EXPECT_EQ(refusal({"--float-encoding", "log", "--depth", "8", "in.exr", "out.exr"}),
              "--float-encoding log needs the 12-bit host, not --depth 8");
    EXPECT_EQ(refusal({"--float-encoding", "log", "in.exr", "out.####.png"}),
              "--float-encoding log needs a floating-point output (such as .exr): out.####.png "
              "would clip what it carries");
}

TEST(OptionRules, LensDataRules) {
    EXPECT_EQ(refusal({"--stmap", "m.exr", "--size", "64x48"}), "<fine>");
    EXPECT_EQ(refusal({"--stmap", "m.exr"}),
              "--stmap needs the frame's size: --size WxH or one INPUT picture, not both");
    EXPECT_EQ(refusal({"--stmap", "m.exr", "--size", "64x48", "in.png"}),
              "--stmap needs the frame's size: --size WxH or one INPUT picture, not both");
    EXPECT_EQ(refusal({"--stmap", "m.tif", "in.png"}),
              "--stmap writes OpenEXR: m.tif must end in .exr");
    EXPECT_EQ(refusal({"--stmap", "m.exr", "--frames", "1-2", "in.png"}),
              "several frames need a sequence output name (with # or %04d)");
    EXPECT_EQ(refusal({"--stmap", "m.exr", "shot.####.exr"}),
              "several frames need a sequence output name (with # or %04d)");
    EXPECT_EQ(refusal({"--overscan", "5", "in.png", "out.png"}), "--overscan applies to --stmap");
    EXPECT_EQ(refusal({"--overscan", "-1"}),
              "--overscan takes a percentage from 0 to 100, not \"-1\"");
    EXPECT_EQ(refusal({"--from-opencv", "a.yaml", "--from-lensfun", "M", "C", "L", "50", "a", "b"}),
              "give --from-opencv or --from-lensfun, not both");
    EXPECT_EQ(refusal({"--correct-in", "remove", "a", "b"}),
              "--correct-in applies to --from-opencv and --from-lensfun");
    EXPECT_EQ(refusal({"--correct-in", "both"}), "--correct-in takes add or remove, not \"both\"");
    EXPECT_EQ(refusal({"--from-opencv", "a.yaml", "--make-chart", "c.png"}),
              "--from-opencv and --from-lensfun set the controls: use them with INPUT OUTPUT, "
              "--save-setup, --list-controls, --stmap, --to-opencv or --to-lensfun");
    EXPECT_EQ(refusal({"--from-lensfun", "M", "C", "L", "wide", "a", "b"}),
              "--from-lensfun takes MAKER MODEL LENS FOCAL, the focal length in millimetres last");
    EXPECT_EQ(refusal({"--from-lensfun", "M", "C", "L", "50", "--save-setup", "s.setup"}),
              "--from-lensfun needs the frame's size: an INPUT picture or --size WxH");
    EXPECT_EQ(refusal({"--from-lensfun", "M", "C"}), "--from-lensfun needs 4 values");
    EXPECT_EQ(refusal({"--to-opencv", "c.yaml", "--to-lensfun", "l.xml", "--focal", "35", "--size",
                       "64x48"}),
              "<fine>");
    EXPECT_EQ(refusal({"--to-opencv", "c.yaml", "--size", "64x48"}),
              "--to-opencv and --to-lensfun need the lens's --focal MM (and --crop for a camera "
              "smaller than 35 mm film)");
    EXPECT_EQ(refusal({"--focal", "35", "a", "b"}),
              "--focal and --crop apply to --to-opencv and --to-lensfun");
    EXPECT_EQ(refusal({"--to-opencv", "c.yaml", "--stmap", "m.exr", "--size", "4x4"}),
              "--stmap cannot be combined with another mode option");
}

TEST(OptionRules, TheOverlayOverwritesNoOtherOutput) {
    // Names are compared as the system resolves them, whether the files exist or not.
    char folder[] = "/tmp/option-rules-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    ASSERT_EQ(chdir(folder), 0);
    EXPECT_EQ(refusal({"--overlay", "./out.png", "in.png", "out.png"}),
              "--overlay ./out.png is also an OUTPUT frame");
    EXPECT_EQ(refusal({"--overlay", "o.0002.png", "--frames", "1-3", "in.png", "o.####.png"}),
              "--overlay o.0002.png is also an OUTPUT frame");
    EXPECT_EQ(refusal({"--overlay", std::string(folder) + "/o.0012.png", "in.png", "o.%04d.png"}),
              "--overlay " + std::string(folder) + "/o.0012.png is also an OUTPUT frame");
    // A frame outside the range written, or another padding, is not an output.
    EXPECT_EQ(refusal({"--overlay", "o.0007.png", "--frames", "1-3", "in.png", "o.####.png"}),
              "<fine>");
    EXPECT_EQ(refusal({"--overlay", "o.02.png", "in.png", "o.####.png"}), "<fine>");
    EXPECT_EQ(refusal({"--overlay", "s.setup", "--save-setup", "./s.setup", "in.png", "out.png"}),
              "--overlay s.setup is also the --save-setup file");
    std::system(("rm -rf " + std::string(folder)).c_str());
}
