// The exclusive temporaries behind every picture and set-up the programs write:
// their names, their commit and what a failure or a signal leaves.
#include <OutputFile.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>
#include <vector>

namespace fs = std::filesystem;
using safeio::OutputFile;

namespace {
class OutputFileTest : public ::testing::Test {
  protected:
    void SetUp() override {
        char pattern[] = "/tmp/outputfile-test-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir_ = pattern;
    }
    void TearDown() override { fs::remove_all(dir_); }

    std::string path(const std::string& name) const { return (dir_ / name).string(); }
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(dir_))
            found.push_back(entry.path().filename().string());
        std::sort(found.begin(), found.end());
        return found;
    }
    static std::string slurp(const std::string& file) {
        std::ifstream in(file);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }

    fs::path dir_;
};
}  // namespace

TEST_F(OutputFileTest, EachWriterHasItsOwnTemporaryAndTheLastCommitWins) {
    OutputFile first, second;
    std::string error;
    ASSERT_TRUE(first.open(path("shot.exr"), &error)) << error;
    ASSERT_TRUE(second.open(path("shot.exr"), &error)) << error;
    EXPECT_NE(first.temporaryPath(), second.temporaryPath());
    for (const OutputFile* file : {&first, &second}) {
        const fs::path temporary = file->temporaryPath();
        EXPECT_EQ(temporary.parent_path(), dir_);
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(temporary)));
        EXPECT_TRUE(safeio::isTemporaryName(temporary.filename().string()));
        EXPECT_EQ(temporary.extension(), ".exr");  // writers may look at it
    }
    ASSERT_TRUE(first.write("first", 5));
    ASSERT_TRUE(second.write("second", 6));
    EXPECT_EQ(names().size(), 2u);  // nothing under the target's name yet
    ASSERT_TRUE(first.commit(&error)) << error;
    EXPECT_EQ(slurp(path("shot.exr")), "first");
    ASSERT_TRUE(second.commit(&error)) << error;
    EXPECT_EQ(slurp(path("shot.exr")), "second");
    EXPECT_EQ(names(), std::vector<std::string>{"shot.exr"});
}

TEST_F(OutputFileTest, AFailedWriteIsRefusedAtCommitAndLeavesTheOldFile) {
    { std::ofstream(path("lens.setup")) << "the old set-up"; }
    struct rlimit saved;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
    const auto previous = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit small = saved;
    small.rlim_cur = 16;  // bytes
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);

    OutputFile file;
    std::string error;
    ASSERT_TRUE(file.open(path("lens.setup"), &error)) << error;
    const std::string text(100, 'x');
    const bool written = file.write(text.data(), text.size());
    const bool committed = file.commit(&error);
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previous);

    EXPECT_FALSE(written);
    EXPECT_FALSE(committed);
    EXPECT_EQ(error, "File too large");
    EXPECT_EQ(slurp(path("lens.setup")), "the old set-up");
    EXPECT_EQ(names(), std::vector<std::string>{"lens.setup"});
}

TEST_F(OutputFileTest, AStopWhileManyThreadsWriteLeavesNoTemporary) {
    // As a signal handler does, in a child of its own (the cleanup ends a
    // process): eight threads open, write, sync and commit files as fast as
    // they can while the cleanup runs on the main thread, and the process
    // ends at once. Whatever was renamed is whole; no temporary is left.
    const int kThreads = 8;
    for (int attempt = 0; attempt < 20; ++attempt) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            std::vector<std::thread> threads;
            for (int t = 0; t < kThreads; ++t)
                threads.emplace_back([this, t] {
                    OutputFile file;
                    const std::string target = path("f" + std::to_string(t) + ".txt");
                    for (;;) {
                        std::string error;
                        if (!file.open(target, &error)) continue;
                        file.write("whole", 5);
                        file.sync();
                        file.commit(&error);
                    }
                });
            std::this_thread::sleep_for(std::chrono::milliseconds(2 + attempt));
            safeio::removeOpenTemporaries();
            _exit(0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status));
        for (const std::string& name : names()) {
            EXPECT_FALSE(safeio::isTemporaryName(name)) << name << ", attempt " << attempt;
            EXPECT_EQ(slurp(path(name)), "whole") << name;
        }
    }
}

TEST_F(OutputFileTest, DiscardAndTheSignalCleanupRemoveTheTemporary) {
    std::string error;
    {
        OutputFile file;
        ASSERT_TRUE(file.open(path("a.png"), &error)) << error;
        ASSERT_TRUE(file.write("abc", 3));
        file.discard();
        EXPECT_TRUE(names().empty());
    }
    {
        OutputFile file;  // left uncommitted: the destructor removes it
        ASSERT_TRUE(file.open(path("b.png"), &error)) << error;
    }
    EXPECT_TRUE(names().empty());
    OutputFile open1, open2;
    ASSERT_TRUE(open1.open(path("c.png"), &error)) << error;
    ASSERT_TRUE(open2.open(path("d.setup"), &error)) << error;
    EXPECT_EQ(names().size(), 2u);
    safeio::removeOpenTemporaries();  // what a SIGTERM handler calls
    EXPECT_TRUE(names().empty());
}

TEST_F(OutputFileTest, OnlyTheTemporaryPatternIsRecognised) {
    // The program's tag leads the name: other programs' temporaries are not ours.
    safeio::setTemporaryTag("sparkrun");
    EXPECT_EQ(safeio::temporaryPrefix(), ".sparkrun-");
    EXPECT_FALSE(safeio::isTemporaryName(".sparkview-0123abcd-42-abcdefgh.png"));
    for (const char* name : {".sparkrun-0123abcd-42-abcdefgh.png", ".sparkrun-0123abcd-42-abcdefgh",
                             ".sparkrun-ffffffff-4194304-z0z0z0z0.tar.gz"})
        EXPECT_TRUE(safeio::isTemporaryName(name)) << name;
    for (const char* name :
         {".sparkrun-notes.txt", ".sparkrun-0123ABCD-42-abcdefgh.png",
          "x.sparkrun-0123abcd-42-abcdefgh", ".sparkrun-0123abcd-42-abcdefg.png",
          ".sparkrun-0123abcd--abcdefgh.png", ".sparkrun-0123abcd-12345678901-abcdefgh.png",
          ".sparkrun-0123abcd-42-abcdefghi", "shot.0001.png", ".sparkrun-1234-shot.png",
          "shot.png.tmp1234"})
        EXPECT_FALSE(safeio::isTemporaryName(name)) << name;
    safeio::setTemporaryTag("a b/c");  // only letters, digits, '-' and '_' are kept
    EXPECT_EQ(safeio::temporaryPrefix(), ".abc-");
}

TEST_F(OutputFileTest, ADeviceOrAPipeUnderTheTargetsNameIsNeverReplaced) {
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    OutputFile file;
    std::string error;
    ASSERT_TRUE(file.open(path("pipe"), &error)) << error;
    ASSERT_TRUE(file.write("text", 4));
    EXPECT_FALSE(file.commit(&error));
    EXPECT_EQ(error, "it exists and is not a regular file");
    EXPECT_TRUE(fs::is_fifo(fs::symlink_status(path("pipe"))));
    EXPECT_EQ(names(), std::vector<std::string>{"pipe"});
}

TEST_F(OutputFileTest, BytesAnotherWriterPutInTheTemporaryAreWrittenAgainAndKept) {
    OutputFile file;
    std::string error;
    ASSERT_TRUE(file.open(path("picture.sgi"), &error)) << error;
    // A writer that opens the temporary by its name and seeks: a hole at first.
    {
        std::ofstream other(file.temporaryPath(), std::ios::binary);
        other.seekp(3 << 20);
        other << "tail";
        other.seekp(0);
        other << "head";
    }
    ASSERT_TRUE(file.rewriteInPlace()) << file.failure();
    ASSERT_TRUE(file.commit(&error)) << error;
    const std::string kept = slurp(path("picture.sgi"));
    ASSERT_EQ(kept.size(), (3u << 20) + 4);
    EXPECT_EQ(kept.substr(0, 4), "head");
    EXPECT_EQ(kept.substr(3 << 20), "tail");
    EXPECT_EQ(kept.find_first_not_of('\0', 4), size_t{3} << 20);
}
