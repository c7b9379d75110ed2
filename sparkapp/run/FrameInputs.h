// FrameInputs: the frame loop's reading ahead. Lanes (a thread and a reader
// process each) decode the frames after the one being processed, check them
// and fill host frames with them, in a fixed number of slots: a frame waits
// in its slot until the loop takes it, so at most `slots` frames are read
// ahead whatever the length of the sequence, and the slots' host frames are
// made once and reused (nothing is allocated per frame).
//
// Frames are claimed in order, so the loop always finds the frame it asks
// for on its way. A frame that fails (unreadable, the wrong size, a float
// frame among integer ones or the reverse) keeps its failure in its slot,
// for the loop to report when it gets there; no frame after it is claimed.
//
// The first frame (index 0), already read by the loop, and a still input,
// which stands for every frame, are filled from that picture.
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "FilePixels.h"
#include "FloatEncoding.h"
#include "FramePlan.h"
#include "HostPixels.h"
#include "ImageFiles.h"
#include "ReaderProcess.h"
#include "RunStatus.h"

// A sequence's frames are all floating-point or all whole numbers, and
// --float-encoding log takes floating-point frames only: a usage failure
// naming the frame that does not fit.
RunStatus checkFrameKind(FloatEncoding encoding, bool firstIsFloat, bool isFloat,
                         const std::string& name);

// What the lanes need to know of a run.
struct FrameSource {
    const FramePlan* plan = nullptr;
    const FilePixels* first = nullptr;  // the first frame, read
    ReadRequest next;                   // how the others are read (its size and depth)
    int depth = 0;                      // the host's
    FloatEncoding encoding = FloatEncoding::Linear;
};

// A frame as the loop takes it.
struct TakenFrame {
    ClipCount clipped;     // pixels the host frame could not hold
    std::string dateTime;  // the input's date, for the output
    FrameOrigin origin;    // the input's display window, for the output
};

class FrameInputs {
  public:
    FrameInputs(const FrameSource& source, size_t frameWords, int lanes, int slots);
    ~FrameInputs();  // stops the lanes
    FrameInputs(const FrameInputs&) = delete;
    FrameInputs& operator=(const FrameInputs&) = delete;

    // Waits for frame `index` of the plan; its host frame is exchanged with
    // *frame (whose storage, free, goes back to the slot).
    RunStatus take(size_t index, HostFrame* frame, TakenFrame* taken);

  private:
    enum class SlotState { Free, Filling, Ready };
    struct Slot {
        SlotState state = SlotState::Free;
        size_t index = 0;
        HostFrame frame;
        RunStatus status;
        TakenFrame taken;
    };

    void lane(ReaderProcess* reader);
    RunStatus guardedFill(size_t index, ReaderProcess& reader, Slot& slot);
    RunStatus fill(size_t index, ReaderProcess& reader, Slot& slot);

    FrameSource source_;
    std::vector<Slot> slots_;
    std::vector<ReaderProcess*> readers_;
    std::vector<std::thread> lanes_;
    std::mutex lock_;
    std::condition_variable changed_;
    size_t next_ = 0;  // the next index to claim
    size_t failedAt_ = ~size_t(0);
    bool stopping_ = false;
};
