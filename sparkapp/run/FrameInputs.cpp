// Reading frames ahead of the plug-in.
#include "FrameInputs.h"

#include <new>
#include <stdexcept>

#include "HostPixels.h"

FrameInputs::FrameInputs(const FrameSource& source, size_t frameWords, int lanes, int slots)
    : source_(source), slots_(static_cast<size_t>(slots)) {
    for (Slot& slot : slots_) slot.frame.resize(frameWords);
    // A still input needs no reader: one lane fills its slots from the picture.
    const bool sequence = source.plan->input.isSequence();
    const int count = sequence ? lanes : 1;
    for (int i = 0; i < count; ++i) readers_.push_back(i == 0 ? &aheadReader() : new ReaderProcess);
    for (int i = 0; i < count; ++i) lanes_.emplace_back(&FrameInputs::lane, this, readers_[i]);
}

FrameInputs::~FrameInputs() {
    {
        std::lock_guard<std::mutex> hold(lock_);
        stopping_ = true;
    }
    changed_.notify_all();
    for (std::thread& lane : lanes_) lane.join();
    for (size_t i = 1; i < readers_.size(); ++i) delete readers_[i];
}

void FrameInputs::lane(ReaderProcess* reader) {
    const size_t count = source_.plan->frames.size();
    std::unique_lock<std::mutex> hold(lock_);
    for (;;) {
        Slot* free = nullptr;
        changed_.wait(hold, [&] {
            if (stopping_ || next_ >= count || next_ > failedAt_) return true;
            for (Slot& slot : slots_)
                if (slot.state == SlotState::Free) free = &slot;
            return free != nullptr;
        });
        if (stopping_ || next_ >= count || next_ > failedAt_) return;
        const size_t index = next_++;
        free->state = SlotState::Filling;
        free->index = index;
        hold.unlock();
        const RunStatus status = guardedFill(index, *reader, *free);
        hold.lock();
        free->status = status;
        free->state = SlotState::Ready;
        if (!status.ok() && index < failedAt_) failedAt_ = index;
        changed_.notify_all();
    }
}

RunStatus checkFrameKind(FloatEncoding encoding, bool firstIsFloat, bool isFloat,
                         const std::string& name) {
    if (encoding == FloatEncoding::Log && !isFloat)
        return RunStatus::failure(
            ExitCode::Usage,
            "--float-encoding log is for floating-point inputs; " + name + " holds whole numbers");
    if (isFloat != firstIsFloat)
        return RunStatus::failure(ExitCode::Usage,
                                  "input " + name + " holds " +
                                      (isFloat ? "floating-point values" : "whole numbers") +
                                      ", the sequence's first frame " +
                                      (isFloat ? "whole numbers" : "floating-point values") +
                                      ": the frames of a sequence must all be one or the other");
    return RunStatus::success();
}

// Nothing thrown may leave a lane's thread: it becomes the frame's failure.
RunStatus FrameInputs::guardedFill(size_t index, ReaderProcess& reader, Slot& slot) {
    const std::string name = source_.plan->input.fileFor(source_.plan->frames[index]);
    try {
        return fill(index, reader, slot);
    } catch (const std::bad_alloc&) {
        return RunStatus::failure(ExitCode::Memory, "out of memory while reading " + name);
    } catch (const std::exception& error) {
        return RunStatus::failure(ExitCode::Internal,
                                  "internal error while reading " + name + ": " + error.what());
    }
}

RunStatus FrameInputs::fill(size_t index, ReaderProcess& reader, Slot& slot) {
    const FramePlan& plan = *source_.plan;
    PixelView view = source_.first->view();
    FilePixels facts;
    const FilePixels* read = source_.first;
    if (index > 0 && plan.input.isSequence()) {
        int depth = 0;
        const std::string name = plan.input.fileFor(plan.frames[index]);
        RunStatus status = reader.readShared(name, source_.next, &view, &facts, &depth);
        if (status.ok())
            status = checkFrameKind(source_.encoding, source_.first->isFloat, facts.isFloat, name);
        if (!status.ok()) return status;
        read = &facts;
    }
    fillHostFrame(view, source_.depth, reinterpret_cast<unsigned char*>(slot.frame.data()),
                  source_.encoding);
    slot.taken.clipped = countClipped(view, source_.encoding);
    slot.taken.dateTime = read->dateTime;
    slot.taken.origin = read->origin;
    return RunStatus::success();
}

RunStatus FrameInputs::take(size_t index, HostFrame* frame, TakenFrame* taken) {
    std::unique_lock<std::mutex> hold(lock_);
    Slot* ready = nullptr;
    changed_.wait(hold, [&] {
        for (Slot& slot : slots_)
            if (slot.state == SlotState::Ready && slot.index == index) ready = &slot;
        return ready != nullptr;
    });
    ready->frame.swap(*frame);
    *taken = ready->taken;
    const RunStatus status = ready->status;
    ready->state = SlotState::Free;
    changed_.notify_all();
    return status;
}
