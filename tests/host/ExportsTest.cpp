// The module's dynamic symbol table holds exactly the names of the export
// list made at configure time, and the list's control records, expanded from
// the control list, are exactly the control table's.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "StraightluxControlTable.h"

namespace {

// The names of the export list; with records true only the control records
// (the names after the "# Control records" line), else every name.
std::set<std::string> listedExports(bool records = false) {
    std::set<std::string> names;
    std::ifstream list(STRAIGHTLUX_BINARY_DIR "/host/exports.txt");
    std::string line;
    bool inRecords = false;
    while (std::getline(list, line)) {
        if (line.rfind("# Control records", 0) == 0) inRecords = true;
        if (line.rfind("# Viewer", 0) == 0) inRecords = false;
        if (line.empty() || line[0] == '#') continue;
        if (!records || inRecords) names.insert(line);
    }
    return names;
}

}  // namespace

TEST(PluginExports, DynamicSymbolsAreExactlyTheExportList) {
    if (std::system("command -v nm >/dev/null 2>&1") != 0) GTEST_SKIP() << "nm is not installed";
    FILE* pipe = popen("nm -D --defined-only '" STRAIGHTLUX_PLUGIN "'", "r");
    ASSERT_NE(pipe, nullptr);
    std::set<std::string> defined;
    char line[1024];
    while (std::fgets(line, sizeof line, pipe) != nullptr) {
        std::istringstream fields(line);
        std::string address, kind, name;
        if (!(fields >> address >> kind >> name)) continue;
        defined.insert(name.substr(0, name.find('@')));
    }
    ASSERT_EQ(pclose(pipe), 0);
    const std::set<std::string> listed = listedExports();
    EXPECT_FALSE(listed.empty());
    EXPECT_EQ(defined, listed);
}

TEST(PluginExports, ControlRecordsOfTheListAreTheControlTable) {
    std::set<std::string> table;
    for (const ControlDescriptor* control : kControlTable) table.insert(control->symbol);
    EXPECT_EQ(table.size(), std::size(kControlTable));  // no symbol twice
    EXPECT_EQ(listedExports(true), table);
}
