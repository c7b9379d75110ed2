// OutputPaths: the names a program will write, checked before any work, and
// the temporaries that dead runs left beside them.
//
// A path is a file name with or without a folder ("out.png" is in ".").
#pragma once

#include <ctime>
#include <string>

#include "RunStatus.h"

// Checks before any work that a file can be made at path: its folder exists
// and is writable, path is not a folder, and its name fits the folder's
// file system (a name component of at most NAME_MAX bytes, the whole path
// below PATH_MAX), and what has the name now may be replaced (see
// checkOutputKind). An output failure (exit 4) otherwise.
RunStatus checkOutputFolder(const std::string& path);

// An existing output must be a regular file, or a link (the new file
// replaces the link, never what it points to): a device node, a pipe or a
// socket would be replaced by a file. An output failure (exit 4) otherwise.
RunStatus checkOutputKind(const std::string& path);

// The absolute path the system resolves path to (links followed as far as
// they exist); the rest of the path kept as given, made lexically normal.
std::string resolvedPath(const std::string& path);

// The place a name stands for when a file is written there: its folder as
// the system resolves it, and its last part as given (a link under the
// name is what a write replaces, not what it points to).
std::string namedPath(const std::string& path);

// Whether two names are the same file, as the system resolves them (a file
// need not exist yet).
bool sameFile(const std::string& a, const std::string& b);

// The folder of path ("." without one, "/" at the root), and its last part.
std::string folderOf(const std::string& path);
std::string baseOf(const std::string& path);

// Removes what runs that died on this machine left in the folder of path
// (only files older than runStart); says so when verbose.
void sweepStaleTemporaries(const std::string& path, time_t runStart, bool verbose);
