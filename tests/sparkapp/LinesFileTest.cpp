// The lines file: what it accepts, and the position it names for
// each kind of fault.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "LinesFile.h"

namespace {

std::string faultOf(const std::string& text) {
    LinesFile lines;
    std::string error;
    if (parseLinesText(text, lines, error)) return "<accepted>";
    return error;
}

}  // namespace

TEST(LinesFile, ReadsLinesOfPointsInFileOrder) {
    LinesFile lines;
    std::string error;
    ASSERT_TRUE(parseLinesText(
        " {\n \"lines\" : [ [[1, 2.5], [3e1, -0.25]],\n[[0,0],[1,1],[2,2]] ] }\n", lines, error))
        << error;
    ASSERT_EQ(lines.lines.size(), 2u);
    EXPECT_EQ(lines.lines[0][1].x, 30.0);
    EXPECT_EQ(lines.lines[0][1].y, -0.25);
    EXPECT_EQ(lines.lines[1].size(), 3u);
    EXPECT_TRUE(parseLinesText("{\"lines\": []}", lines, error));
    EXPECT_TRUE(lines.lines.empty());
}

TEST(LinesFile, FaultsNameTheirLineAndColumn) {
    // Text that is not JSON: the parser's own account, at the place it stopped.
    EXPECT_EQ(faultOf(""),
              "line 1, column 1: syntax error while parsing value - unexpected end of input; "
              "expected '[', '{', or a literal");
    EXPECT_EQ(faultOf("{\"lines\": [[[1, 2], [3, 4]]"),
              "line 1, column 28: syntax error while parsing array - unexpected end of input; "
              "expected ']'");
    EXPECT_EQ(faultOf("{\"lines\": [[[1, 2], [3, 4]]]}\nx"),
              "line 2, column 1: syntax error while parsing value - invalid literal; expected end "
              "of input");
    EXPECT_EQ(faultOf("{\"lines\": [NaN]}"),
              "line 1, column 12: syntax error while parsing value - invalid literal");
    // JSON of the wrong shape: at the value that breaks it (the third number;
    // the opening bracket of a short line; the string; the member's name).
    EXPECT_EQ(faultOf("{\"lines\":\n  [[[1, 2, 3], [3, 4]]]}"),
              "line 2, column 12: a point has exactly two numbers: expected ']'");
    EXPECT_EQ(faultOf("{\"lines\": [[[1], [3, 4]]]}"),
              "line 1, column 15: a point has two numbers, x and y; this one has 1");
    EXPECT_EQ(faultOf("{\"lines\": [[[1, 2]]]}"),
              "line 1, column 12: a line needs at least two points; this one has one");
    EXPECT_EQ(faultOf("{\"lines\": [[]]}"),
              "line 1, column 12: a line needs at least two points; this one is empty");
    EXPECT_EQ(faultOf("{\"lines\": [[[1, \"2\"], [3, 4]]]}"),
              "line 1, column 17: expected a number");
    EXPECT_EQ(faultOf("{\"lines\": [[[1, 1e999], [3, 4]]]}"),
              "line 1, column 17: number out of range: 1e999");
    EXPECT_EQ(faultOf("{\"points\": []}"), "line 1, column 2: unknown member \"points\"");
    EXPECT_EQ(faultOf("{\"lines\": [], \"lines\": []}"),
              "line 1, column 15: \"lines\" given twice");
    EXPECT_EQ(faultOf("{}"), "line 1, column 2: no \"lines\" member");
    EXPECT_EQ(faultOf("{\"lines\": {}}"), "line 1, column 11: \"lines\" must be a list of lines");
    EXPECT_EQ(faultOf("{\"lines\": [7]}"),
              "line 1, column 12: expected a line: a list of points [[x, y], ...]");
    EXPECT_EQ(faultOf("[]"), "line 1, column 1: expected '{': a lines file is {\"lines\": [...]}");
}

TEST(LinesFile, ReadsWhatJsonAllows) {
    // A byte-order mark and escapes in a member name are JSON too.
    LinesFile lines;
    std::string error;
    EXPECT_TRUE(parseLinesText("\xEF\xBB\xBF{\"l\\u0069nes\": [[[1, 2], [3, 4]]]}", lines, error))
        << error;
    EXPECT_EQ(lines.lines.size(), 1u);
    // A huge number is quoted only in part.
    const std::string huge(100000, '9');
    const std::string fault = faultOf("{\"lines\": [[[1, " + huge + "e999], [3, 4]]]}");
    EXPECT_LT(fault.size(), 120u) << fault;
    EXPECT_EQ(fault.rfind("line 1, column 17: number out of range: 9999", 0), 0u) << fault;
}

TEST(LinesFile, PointsMustLieOnTheFrame) {
    LinesFile lines;
    std::string error;
    ASSERT_TRUE(parseLinesText("{\"lines\": [[[-0.5, -0.5], [9.5, 4.5]]]}", lines, error));
    EXPECT_TRUE(checkLinesInFrame(lines, 10, 5, error)) << error;
    ASSERT_TRUE(
        parseLinesText("{\"lines\": [[[0, 0], [1, 1]], [[2, 2], [9.6, 1]]]}", lines, error));
    EXPECT_FALSE(checkLinesInFrame(lines, 10, 5, error));
    EXPECT_EQ(
        error,
        "line 2, point 2 (9.6, 1) lies outside the 10x5 frame (x -0.5 to 9.5, y -0.5 to 4.5)");
}

TEST(LinesFile, HoldsAtMostAThousandLinesAndTenThousandPoints) {
    auto linesOf = [](size_t lines, size_t points) {
        std::string text = "{\"lines\": [";
        for (size_t l = 0; l < lines; ++l) {
            text += l ? ",\n[" : "\n[";
            for (size_t p = 0; p < points; ++p) text += p ? ", [1, 2]" : "[1, 2]";
            text += "]";
        }
        return text + "]}";
    };
    LinesFile lines;
    std::string error;
    ASSERT_TRUE(parseLinesText(linesOf(1000, 10), lines, error)) << error;
    EXPECT_EQ(lines.lines.size(), 1000u);
    // The 1001st line is refused at its bracket, the 10001st point at its own.
    EXPECT_EQ(faultOf(linesOf(1001, 2)),
              "line 1002, column 1: more than 1000 lines (a lines file holds at most 1000)");
    EXPECT_EQ(faultOf(linesOf(1, 10000)), "<accepted>");
    const std::string fault = faultOf(linesOf(2, 5001));
    EXPECT_EQ(fault.rfind("line 3, column ", 0), 0u) << fault;
    EXPECT_NE(fault.find(": more than 10000 points (a lines file holds at most 10000 in all)"),
              std::string::npos)
        << fault;
}

TEST(LinesFile, ConsecutivePointsThatCoincideAreNamed) {
    LinesFile lines;
    std::string error;
    ASSERT_TRUE(
        parseLinesText("{\"lines\": [[[1, 2], [1, 3], [1, 2]], [[5, 5], [5, 5], [6, 6], "
                       "[6, 6]]]}",
                       lines, error));
    EXPECT_EQ(coincidentPoints(lines),
              "2 pair(s) of consecutive points coincide, the first at line 2, points 1 and 2 (5, "
              "5): a click given twice adds nothing to AutoFind's fit");
    ASSERT_TRUE(parseLinesText("{\"lines\": [[[1, 2], [1, 3], [1, 2]]]}", lines, error));
    EXPECT_EQ(coincidentPoints(lines), "");
}

TEST(LinesFile, OnlyARegularFileIsRead) {
    char folder[] = "/tmp/lines-file-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    const std::string pipe = std::string(folder) + "/pipe.json";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    LinesFile lines;
    std::string error;
    // Returns at once: a pipe is never waited on.
    EXPECT_FALSE(readLinesFile(pipe, lines, error));
    EXPECT_EQ(error, "cannot read " + pipe + ": not a regular file");
    EXPECT_FALSE(readLinesFile("/dev/zero", lines, error));
    EXPECT_EQ(error, "cannot read /dev/zero: not a regular file");
    const std::string file = std::string(folder) + "/good.json";
    std::ofstream(file) << "\xEF\xBB\xBF{\"lines\": [[[1, 2], [3, 4]]]}";
    EXPECT_TRUE(readLinesFile(file, lines, error)) << error;
    std::remove(file.c_str());
    std::remove(pipe.c_str());
    rmdir(folder);
}
