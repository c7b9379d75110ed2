// FramePattern: numbered file names of a frame sequence.
//
// A pattern marks the frame number in the file name (not the folder) with a
// run of '#' (their count is the zero padding: shot.####.dpx gives
// shot.0007.dpx) or with a printf field %d / %0Nd. A name without a mark is a
// single file that stands for every frame. Frame numbers are the host's
// (unsigned, usually from 1).
#pragma once

#include <string>
#include <vector>

class FramePattern {
  public:
    // Parses name; a name with two marks, or a malformed % field, is refused.
    static bool parse(const std::string& name, FramePattern* pattern, std::string* error);
    // A single name for every frame, '#' and '%' taken as they stand.
    static FramePattern single(const std::string& name);

    bool isSequence() const { return marked_; }
    // The name as given (shot.####.dpx, shot.%04d.dpx).
    const std::string& text() const { return name_; }
    // The file name of a frame (the name itself when not a sequence).
    std::string fileFor(unsigned frame) const;
    // Frame numbers of the files in the folder that match, ascending.
    std::vector<unsigned> existingFrames() const;
    // Whether path names a file of this pattern, and which frame. Names are
    // compared as places to write (OutputPaths.h's namedPath): folders as
    // the system resolves them, a link under the name not followed.
    bool holds(const std::string& path, unsigned* frame = nullptr) const;
    // Whether this pattern at a frame from first to last names the same file
    // as other at a frame from first to last (compared as holds does);
    // *frame gets this pattern's frame of such a file. A name without a mark
    // stands for every frame.
    bool sharesFile(const FramePattern& other, unsigned first, unsigned last,
                    unsigned* frame = nullptr) const;

  private:
    bool frameOfName(const std::string& name, unsigned* frame) const;
    std::string head() const;  // the name before the mark, without the folder
    bool sharesName(const FramePattern& other, unsigned* frame) const;

    std::string name_;    // as given
    std::string prefix_;  // folder and name before the mark, or the whole name
    std::string suffix_;
    int padding_ = 0;
    bool marked_ = false;
};

// Parses "A-B" (A <= B) or "A" into the frames A..B.
bool parseFrameRange(const std::string& text, std::vector<unsigned>* frames, std::string* error);
