// SessionWorker: the one thread that calls the plug-in, and its requests
// and answers as seen from the interface thread.
//
// The plug-in's entry points and callbacks must run one at a time on one
// thread, as the host makes them; rendering must not hold up the interface.
// So every plug-in call (SparkProcess, SparkInteract, SparkOverlay, the
// callbacks, set-ups) runs on this worker's thread, in the order asked. A
// request made while the worker is busy waits in a queue; a request that
// only replaces the one before it (another drag, another value of the same
// field, another view) takes that one's place, so that a render never falls
// behind the pointer. After a request the worker publishes what changed:
// a new frame, the control values, and the overlay drawn for the current
// view (as commands, OverlayCapture.h). A drag that moved a control without
// the plug-in rendering gets a render once the queue is empty, when
// "Auto Preview" is on.
//
// The answers arrive as Qt signals on the interface thread. A question the
// plug-in asks (sparkMessageConfirm) is put to `asker` there while the
// worker waits.
#pragma once

#include <QObject>
#include <QString>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ViewSession.h"

// What the panel needs to build a control's widget.
struct ControlDescription {
    ControlKind kind = ControlKind::Float;
    std::string name;    // the title as exported, before ':' (ControlNames)
    std::string symbol;  // "SparkFloat6"
    int number = 0;
    int page = 0;
    double minimum = 0.0;
    double maximum = 0.0;
    double increment = 0.0;
    int decimals = 3;                  // from the title's %.Nf
    std::vector<std::string> entries;  // menus: the value texts (ControlNames)
    std::vector<std::string> titles;   // menus: the plug-in's own entry strings
    std::string title;                 // buttons and check boxes: the record's title
};

class SessionWorker : public QObject {
    Q_OBJECT
  public:
    explicit SessionWorker(const RunOptions& options, QObject* parent = nullptr);
    ~SessionWorker() override;

    // Loads the plug-in, then opens the options' image if there is one.
    void begin();
    void open(const QString& name, const QString& frames);
    void showFrame(unsigned frame);
    void render();
    void setNumber(size_t control, double value);
    void setEntry(size_t control, int entry);
    void setOn(size_t control, bool on);
    void press(size_t control);
    void detectLines();
    void toggleKey(size_t control);
    enum class PointerEvent { Move, Press, Drag, Release };
    void pointer(PointerEvent event, const ViewPlacement& view, int sx, int sy, float x, float y,
                 float pressure);
    void setView(const ViewPlacement& view);
    void saveSetup(const QString& path, bool remember = true);
    void loadSetup(const QString& path);
    // Requests not yet done (for tests and the benchmark).
    size_t pending() const;

    const std::vector<ControlDescription>& descriptions() const { return descriptions_; }
    std::function<bool(const QString& question)> asker;
    // The plug-in's file browser (sparkFileBrowserDisplay), shown on the
    // interface thread: the start folder and the extension; the file chosen
    // or empty when the user cancels.
    std::function<QString(const QString& path, const QString& extension)> chooser;

  signals:
    void pluginLoaded();
    void pagesTitled(std::map<int, QString> titles);
    void opened(QString name, std::vector<unsigned> frames, unsigned frame);
    void frameReady(std::shared_ptr<const DisplayFrame> result,
                    std::shared_ptr<const DisplayFrame> input);
    void overlayReady(std::shared_ptr<const GlCommands> commands, ViewPlacement view);
    void valuesChanged(std::vector<ControlValue> values, bool dirty, bool linesDrawn);
    void message(QString text);
    // A request failed; `fatal` when nothing can go on (the plug-in did not load).
    void failed(QString text, int code, bool fatal);
    void cursorChanged(int kind);
    void setupSaved(QString path);
    void setupLoaded(QString path);
    void idle();

  private:
    struct Job {
        int replaces = 0;  // 0: never replaced; else jobs of the same kind replace each other
        std::function<void(StepResult&)> run;
    };
    void post(int replaces, std::function<void(StepResult&)> run);
    void loop();
    void runJob(Job& job);
    void publish(StepResult& step);
    void check(const RunStatus& status, bool fatal = false);
    void deliver(std::function<void()> onInterface);
    int confirm(const std::string& question);
    std::string chooseFile(const std::string& path, const std::string& extension);
    void describeControls();

    RunOptions options_;
    std::unique_ptr<ViewSession> session_;  // used on the worker thread only
    std::vector<ControlDescription> descriptions_;
    ViewPlacement view_;  // worker side
    bool renderWanted_ = false;
    bool loaded_ = false;

    mutable std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Job> queue_;
    bool busy_ = false;
    bool stopping_ = false;
    std::thread thread_;
};
