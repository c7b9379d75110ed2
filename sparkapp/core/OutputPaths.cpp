// Checks on output names, and the sweep of stale temporaries.
#include "OutputPaths.h"

#include <OutputFile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <filesystem>

namespace {
RunStatus outputFailure(const std::string& text) {
    return RunStatus::failure(ExitCode::Output, text);
}
}  // namespace

std::string folderOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string baseOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string resolvedPath(const std::string& path) {
    namespace fs = std::filesystem;
    std::error_code error;
    // Absolute first: a relative name of which nothing exists yet would
    // otherwise come back as given.
    const fs::path absolute = fs::absolute(path, error);
    const fs::path resolved = fs::weakly_canonical(error ? fs::path(path) : absolute, error);
    return (error ? absolute : resolved).lexically_normal().string();
}

std::string namedPath(const std::string& path) {
    const std::string base = baseOf(path);
    if (base.empty() || base == "." || base == "..") return resolvedPath(path);
    const std::string folder = resolvedPath(folderOf(path));
    return folder == "/" ? folder + base : folder + "/" + base;
}

bool sameFile(const std::string& a, const std::string& b) {
    return a == b || resolvedPath(a) == resolvedPath(b);
}

RunStatus checkOutputKind(const std::string& path) {
    struct stat status;
    if (lstat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode) || S_ISLNK(status.st_mode))
        return RunStatus::success();
    const char* kind = S_ISDIR(status.st_mode)    ? "a folder"
                       : S_ISFIFO(status.st_mode) ? "a pipe (FIFO)"
                       : S_ISSOCK(status.st_mode) ? "a socket"
                                                  : "a device";
    return outputFailure("output is " + std::string(kind) + ", not a regular file: " + path);
}

RunStatus checkOutputFolder(const std::string& path) {
    if (path.empty() || path.back() == '/')
        return outputFailure("output is not a file name: " + path);
    if (path.size() >= PATH_MAX)
        return outputFailure("output path is longer than the system allows (" +
                             std::to_string(PATH_MAX - 1) + " bytes): " + path);
    const std::string folder = folderOf(path);
    struct stat status;
    if (stat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode))
        return outputFailure(errno == ENAMETOOLONG ? "output folder name too long: " + folder
                                                   : "output folder does not exist: " + folder);
    if (access(folder.c_str(), W_OK | X_OK) != 0)
        return outputFailure("output folder is not writable: " + folder);
    const long nameMax = pathconf(folder.c_str(), _PC_NAME_MAX);
    const std::string base = baseOf(path);
    if (nameMax > 0 && base.size() > static_cast<size_t>(nameMax))
        return outputFailure("output file name is longer than its folder allows (" +
                             std::to_string(nameMax) + " bytes): " + base);
    if (stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode))
        return outputFailure("output is a folder: " + path);
    return checkOutputKind(path);
}

void sweepStaleTemporaries(const std::string& path, time_t runStart, bool verbose) {
    const std::string folder = folderOf(path);
    const int removed = safeio::removeStaleTemporaries(folder, runStart);
    if (removed && verbose)
        std::printf("removed %d temporary file(s) left by an earlier run in %s\n", removed,
                    folder.c_str());
}
