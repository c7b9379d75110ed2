// PluginZel: base class of every plug-in built on the framework. It carries the
// per-frame state that the host binding fills (frame numbers as doubles), the
// input and output clip descriptors, and row banding over the host's
// processors: MultiProcess runs a member function once per band with an
// inclusive first and last row. Base behaviours of the virtual operations do
// nothing; a plug-in overrides what it needs.
#pragma once

#include <cstdio>

#include "ResultZel.h"
#include "SourceZel.h"

class ImageZel;

class PluginZel {
  public:
    using RowWorker = void (PluginZel::*)(long first, long last);
    using LibraryRowFunction = void (*)(void* data, int first, int last);

    PluginZel();
    virtual ~PluginZel();
    virtual void ProcessFrame();
    virtual void ProcessFrameOGL(int, int, double, double, double, double);
    virtual void SyncControls();
    virtual void Load(FILE*, long);
    virtual void Save(FILE*);
    virtual void LoadPrivate();
    virtual void SavePrivate();
    virtual void Reset(int);
    virtual void FrameChange(double);

    // Runs fn over count rows split into bands over the host's processors
    // (zelForEachBand); returns when all are done.
    void MultiProcess(RowWorker fn, long count);
    // Runs the plain function stored by lib_mp_exec over one band.
    void execute_library_mp_func(long first, long last);
    // Motion values of frame 2 x frame of clip: width x height (u, v) float
    // pairs, row-major; the caller frees them with delete[]. Null when memory
    // ran out or the clip gave no frame.
    float* GetTrackData(SourceZel* clip, double frame);
    void mp_ImgToTV(long first, long last);
    int AbortRender() { return 0; }  // a running operation is never asked to stop
    // The plug-in keeps no private data in the host's setup.
    void LoadPrivateData(void*, int*, char*) {}
    void SavePrivateData(void*, int, char*) {}

    // Frame numbers of the current host request.
    double frame = 0.0;
    double frameReserved = 0.0;
    double frameField2 = 0.0;  // the host record's field after the frame number
    double frameField2Reserved = 0.0;
    int reservedWords[2] = {0, 0};
    unsigned char stateFlag = 1;
    unsigned char frameStateFlag = 1;  // cleared by the host binding at every frame
    // Library function slots: lib_mp_exec's plain function and its data, then spare words.
    LibraryRowFunction libraryFunction = nullptr;
    void* libraryData = nullptr;
    unsigned int librarySlots[12] = {};
    unsigned int settings[11] = {kSettingsFirstWord};
    int reservedWord1 = 0;
    double reservedRate = 25.0;
    int frameStateWord = 0;  // cleared by the host binding at every frame
    int reservedWord2 = 0;
    float* trackValues = nullptr;    // GetTrackData's output while it runs
    ImageZel* trackImage = nullptr;  // GetTrackData's input while it runs
    SourceZel input;
    ResultZel output;

  private:
    static constexpr unsigned int kSettingsFirstWord = 15;
};

// Plain-function forms for code that holds the plug-in as an opaque pointer.
// lib_mp_exec stores fn and data in the plug-in's single pair of slots, so it
// must not be nested or called from two threads at once.
void lib_mp_exec(void* plugin, void (*fn)(void* data, int first, int last), int count, void* data);
int lib_abort_render(void* plugin);
