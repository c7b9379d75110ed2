// The module's dynamic symbol table holds exactly the names of the export list.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

namespace {

std::set<std::string> listedExports() {
    std::set<std::string> names;
    std::ifstream list(STRAIGHTLUX_SOURCE_DIR "/host/exports.txt");
    std::string line;
    while (std::getline(list, line)) {
        if (line.empty() || line[0] == '#') continue;
        names.insert(line);
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
