// The simulated host: plays the compositing host for a Spark plug-in.
//
// The library defines every host function of the Spark interface (sparkMessage,
// sparkMemGetBuffer, sparkMpFork, ...) and the OpenGL 1.x immediate-mode calls a
// plug-in draws its overlays with, so that a plug-in loaded with dlopen resolves
// them from this process exactly as it would inside the real host. The answers
// come from scriptable state. Plugin loads a plug-in by path and finds its entry
// points and control records by name.
//
// What the plug-in tells its host reaches the driving program through the
// message sink and the set-up counters. A test can also switch on recording,
// which keeps every call with its arguments; off, no call costs more than its
// answer, so a long run stays flat.
//
// Threads: host functions may be called from sparkMpFork workers; recording
// and the message sink are locked. Everything else is meant for one driving
// thread.
#pragma once

#include <spark.h>

#include <atomic>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace simhost {

// One recorded call: the function name and its arguments as text (numbers with
// "%g" for floats and "%d" for integers, strings as they stand).
struct Call {
    std::string name;
    std::vector<std::string> args;
    std::string str() const;  // "name(a,b,c)"
};

// A host frame buffer: packed RGB rows, 3 bytes a pixel at depth 24, three
// 16-bit words a pixel at depth 48 (the 12-bit value in the top 12 bits).
struct FrameBuffer {
    int width = 0;
    int height = 0;
    int depth = 24;
    std::vector<unsigned long> storage;  // word-aligned backing store
    unsigned char* bytes() { return reinterpret_cast<unsigned char*>(storage.data()); }
    unsigned short* words() { return reinterpret_cast<unsigned short*>(storage.data()); }
    size_t byteCount() const;
    int pixelBytes() const;            // 3 at depth 24, 6 at depth 48, whole bytes otherwise
    void resize(int w, int h, int d);  // zero-filled
};

class Plugin;

class Host {
  public:
    static Host& instance();
    // Back to the defaults below; forgets recorded calls, buffers, keys and
    // the counters. The loaded plug-in stays (it belongs to its Plugin
    // object), and so does the recording switch.
    void reset();

    // ---- scriptable state ----
    float apiVersion = 4.0f;
    int freeBuffers = 8;             // sparkMemGetFreeMemory
    int processors = 2;              // sparkMpFork runs this many workers
    std::deque<int> confirmAnswers;  // sparkMessageConfirm pops from the front...
    int confirmDefault = 1;          // ...and answers this when empty
    // When set, sparkMessageConfirm asks this instead (a host that shows the
    // question to a user); the answer is non-zero for yes.
    std::function<int(const std::string& question)> confirmSink;
    std::string workingDir = "/tmp";
    std::string fileBrowserChoice;  // handed to the browser's callback; empty: user cancels
    // When set, sparkFileBrowserDisplay asks this instead (a host that shows
    // its file browser): the start folder or file and the extension shown;
    // the file chosen, or empty when the user cancels.
    std::function<std::string(const std::string& path, const std::string& extension)>
        fileBrowserSink;
    float viewerRatio = 1.0f;  // sparkGetViewerRatio
    float pixelAspect = 1.0f;  // SparkGraphInfoStruct.PixelAspectRatio
    long graphicsMaxX = 1920, graphicsMaxY = 1200;
    std::string programName = "simhost";
    std::map<int, FrameBuffer> buffers;  // by id: 1 output, 2 first input clip
    std::set<int> failingBufferIds;      // sparkMemGetBuffer fails for these ids
    // sparkGetFrame(clip, frame, destination): fills destination; default leaves it alone.
    std::function<void(int clip, int frame, unsigned long* destination)> frameSource;

    // Animation curves. sparkGetCurveValuef(type, n, frame) answers, in order:
    // curveFn when set; the keys of control n (linear between keys, held
    // beyond the ends) when it has any; the Value of the loaded plug-in's
    // SparkFloatN / SparkUserFloatN record; else 0.
    std::function<float(int type, int control, float frame)> curveFn;
    // control -> frame -> value (sparkSetCurveKey writes here)
    std::map<int, std::map<int, float>> curveKeys;
    // The answer without curveFn: keys, else the record's Value, else 0.
    float curveValue(int control, float frame) const;

    // Set-ups: when true, sparkSaveSetup / sparkLoadSetup write and read real
    // files (the given name) holding every control record value of the loaded
    // plug-in and the curve keys; when false they are only recorded.
    bool setupFiles = false;
    std::string setupError;  // last set-up file error, empty when fine

    Plugin* plugin = nullptr;  // the plug-in last loaded (set by Plugin::load)

    // ---- what the plug-in tells its host ----
    // Called with the text of each sparkError and sparkMessage, on the
    // calling thread (a worker's too, one at a time).
    std::function<void(const std::string& text)> messageSink;
    void deliverMessage(const char* text);
    // sparkLoadSetup and sparkSaveSetup calls since reset().
    int setupLoads = 0;
    int setupSaves = 0;
    // Titles of the control pages (sparkControlTitle), by page: 0 to 4 the
    // five pages, 5 process, 6 analyse.
    std::map<int, std::string> pageTitles;
    // Called with each sparkViewingCursor kind (the viewer's pointer shape).
    std::function<void(int kind)> cursorSink;

    // ---- recorded calls (off unless switched on) ----
    void setRecording(bool on) { recording_.store(on); }
    bool recording() const { return recording_.load(std::memory_order_relaxed); }
    void record(const std::string& name, std::vector<std::string> args);
    std::vector<Call> calls() const;
    std::vector<Call> callsNamed(const std::string& name) const;
    int count(const std::string& name) const;
    bool called(const std::string& callText) const;  // any call whose str() equals callText
    void clearCalls();

    // Worker index of the calling sparkMpFork worker (-1 outside a worker).
    static int workerIndex();

    // Make an information record for a frame of the given size and depth
    // (FramePixels, FrameBytes, NumProcessors = processors, Context = 1, Mode = 1).
    SparkInfoStruct makeInfo(int width, int height, int depth, unsigned frame = 1,
                             const std::string& setupName = "") const;

    // Fill buffer id with a frame of the given size and depth (zeroed).
    FrameBuffer& setBuffer(int id, int width, int height, int depth);

  private:
    Host() = default;
    mutable std::mutex mutex_;
    std::vector<Call> calls_;
    std::atomic<bool> recording_{false};
};

// A plug-in loaded with dlopen (RTLD_NOW | RTLD_LOCAL).
class Plugin {
  public:
    Plugin() = default;
    ~Plugin();  // dlclose
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    // Load the library at path. With fresh = true a private copy of the file is
    // loaded, so that its static objects are constructed anew even when the same
    // plug-in is already loaded in this process. False with a message on failure
    // (not a file, not a shared library, no SparkInitialise entry point).
    bool load(const std::string& path, std::string* error, bool fresh = false);
    bool loaded() const { return handle_ != nullptr; }
    void* symbol(const char* name) const;  // dlsym, null when absent
    template <class T>
    T* record(const std::string& name) const {
        return static_cast<T*>(symbol(name.c_str()));
    }

    // Control records the plug-in exports, found by name: kind ("Float", "Pup",
    // "Push", "Boolean", "UserFloat", "Int", "String", "Color") and number.
    struct RecordRef {
        std::string kind;
        int number;
        std::string symbol;  // e.g. "SparkFloat6"
        void* address;
    };
    std::vector<RecordRef> records() const;  // every exported record, numbers 1..999

    // Entry points; a missing optional entry point does nothing and returns 0 / null.
    unsigned int initialise(const SparkInfoStruct& info);
    void uninitialise(const SparkInfoStruct& info);
    int clips();
    int processStart(const SparkInfoStruct& info);
    unsigned long* process(const SparkInfoStruct& info);
    void memoryTempBuffers();
    void channelEditor();
    void overlay(const SparkInfoStruct& info, float zoom);
    unsigned long* interact(const SparkInfoStruct& info, int sx, int sy, float pressure, float vx,
                            float vy, float zoom);
    // Call a record's callback as the host does when the user changes it.
    unsigned long* callback(const std::string& recordSymbol, int arg, const SparkInfoStruct& info);

  private:
    void* handle_ = nullptr;
    std::string copyPath_;
    // The per-frame entry points, looked up once at load.
    void* processStart_ = nullptr;
    void* process_ = nullptr;
};

}  // namespace simhost
