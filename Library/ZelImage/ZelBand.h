// Row banding: the one way the framework spreads work over the host's
// processors. zelForEachBand runs a callable once per band with an inclusive
// first and last row; with a host fork service each band runs on its own
// processor (the host runs one worker per processor and each worker asks the
// host which share it is), without one the bands run one after the other on
// the calling thread. Either way the rows are split the same way: bands =
// the processor count of the current request (below 1 counts as 1), every
// band gets count / bands rows (integer division) and the last band also
// takes the remainder, so with fewer rows than bands all bands but the last
// are empty (first 0, last -1). Each band must write only its own rows.
#pragma once

#include <type_traits>

struct ZelRowBand {
    long first = 0;
    long last = -1;  // inclusive; last < first is an empty band
};

// A worker's band index from the host's share report: (int)(offset / length + 0.2).
long zelBandIndex(unsigned long offset, unsigned long length);

// Rows of band `index` of `bands` out of `count`; a band beyond the count is empty.
ZelRowBand zelBandRows(long index, long bands, long count);

// Inside a forked worker: this worker's band of `count` rows split `bands` ways.
ZelRowBand zelCurrentBand(long bands, long count);

// A typed row task without ownership: calls fn(first, last) on the object.
class ZelRowTask {
  public:
    template <class Fn>
    explicit ZelRowTask(Fn& fn)
        : object_(&fn), call_([](void* object, long first, long last) {
              (*static_cast<Fn*>(object))(first, last);
          }) {}
    void operator()(long first, long last) const { call_(object_, first, last); }

  private:
    void* object_;
    void (*call_)(void*, long, long);
};

// Runs task over rows 0 .. count - 1 in bands; returns when every band is done.
void zelRunBands(long count, const ZelRowTask& task);

template <class Fn>
void zelForEachBand(long count, Fn&& fn) {
    std::remove_reference_t<Fn>& callable = fn;
    zelRunBands(count, ZelRowTask(callable));
}

// An executor for ImageXfmZel::set_mp_exec (context unused, non-null required)
// that hands the transformer's workers to zelRunBands.
void zelBandExecutor(void* context, void (*worker)(void* argument, int first, int last), int count,
                     void* argument);
