// The plug-in's thread.
#include "SessionWorker.h"

#include <QMessageBox>
#include <QMetaObject>
#include <chrono>
#include <cstdlib>
#include <future>

namespace {
// Kinds of request that replace one another when queued back to back.
enum Replaces { kOnce = 0, kMove = 1, kDrag = 2, kView = 3, kFrame = 4, kValueBase = 100 };
const char kDefaultDecimalsFormat[] = "%.3f";

int decimalsOf(const std::string& title) {
    const size_t dot = title.find("%.");
    if (dot == std::string::npos || dot + 2 >= title.size()) return 3;
    return std::atoi(title.c_str() + dot + 2);
}

std::string floatTitle(const Control& control) {
    if (control.recordKind == "UserFloat") {
        const auto* record = static_cast<SparkUserFloatStruct*>(control.record);
        return record->Title ? record->Title : kDefaultDecimalsFormat;
    }
    const auto* record = static_cast<SparkFloatStruct*>(control.record);
    return record->Title ? record->Title : kDefaultDecimalsFormat;
}
std::string text(const char* title) { return title ? title : ""; }

void fillTitles(const Control& control, ControlDescription* d) {
    if (control.kind == ControlKind::Menu) {
        const auto* record = static_cast<SparkPupStruct*>(control.record);
        for (size_t i = 0; i < control.entries.size(); ++i)
            d->titles.push_back(text(record->Titles[i]));
    } else if (control.kind == ControlKind::Button) {
        d->title = text(static_cast<SparkPushStruct*>(control.record)->Title);
    } else if (control.kind == ControlKind::Check) {
        d->title = text(static_cast<SparkBooleanStruct*>(control.record)->Title);
    }
}
}  // namespace

SessionWorker::SessionWorker(const RunOptions& options, QObject* parent)
    : QObject(parent), options_(options) {
    asker = [](const QString& question) {
        return QMessageBox::question(nullptr, "sparkview", question) == QMessageBox::Yes;
    };
    thread_ = std::thread([this] { loop(); });
}

SessionWorker::~SessionWorker() {
    {
        std::lock_guard<std::mutex> lock(mutex_);
        stopping_ = true;
        queue_.clear();
    }
    wake_.notify_all();
    thread_.join();
}

size_t SessionWorker::pending() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return queue_.size() + (busy_ ? 1 : 0);
}

void SessionWorker::post(int replaces, std::function<void(StepResult&)> run) {
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (replaces != kOnce && !queue_.empty() && queue_.back().replaces == replaces)
            queue_.back().run = std::move(run);
        else
            queue_.push_back(Job{replaces, std::move(run)});
    }
    wake_.notify_one();
}

void SessionWorker::deliver(std::function<void()> onInterface) {
    QMetaObject::invokeMethod(this, std::move(onInterface), Qt::QueuedConnection);
}

void SessionWorker::loop() {
    for (;;) {
        Job job;
        {
            std::unique_lock<std::mutex> lock(mutex_);
            busy_ = false;
            if (queue_.empty() && !renderWanted_ && !stopping_) deliver([this] { emit idle(); });
            wake_.wait(lock, [this] { return stopping_ || !queue_.empty() || renderWanted_; });
            if (stopping_) break;
            if (!queue_.empty()) {
                job = std::move(queue_.front());
                queue_.pop_front();
            } else {
                // Nothing asked: the render a drag left wanting.
                renderWanted_ = false;
                job.run = [this](StepResult& step) { check(session_->render(&step)); };
            }
            busy_ = true;
        }
        runJob(job);
    }
    session_.reset();  // SparkUnInitialise, on this thread like every plug-in call
}

void SessionWorker::runJob(Job& job) {
    StepResult step;
    try {
        job.run(step);
    } catch (const std::bad_alloc&) {
        check(RunStatus::failure(ExitCode::Memory, "out of memory: an allocation failed"));
    } catch (const std::exception& error) {
        check(
            RunStatus::failure(ExitCode::Internal, std::string("internal error: ") + error.what()));
    }
    if (loaded_) publish(step);
}

// Publishes the step's frame, and the values and overlay once nothing more waits.
void SessionWorker::publish(StepResult& step) {
    if (step.frameChanged) {
        auto result = std::make_shared<const DisplayFrame>(std::move(step.result));
        auto input = std::make_shared<const DisplayFrame>(session_->input());
        deliver([this, result, input] { emit frameReady(result, input); });
    }
    if (!step.message.empty()) {
        const QString text = QString::fromStdString(step.message);
        deliver([this, text] { emit message(text); });
    }
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (!queue_.empty()) return;
    }
    auto values = session_->values();
    const bool dirty = session_->dirty();
    const bool lines = session_->linesDrawn();
    deliver([this, values, dirty, lines] { emit valuesChanged(values, dirty, lines); });
    auto commands = std::make_shared<const GlCommands>(session_->overlay(view_));
    const ViewPlacement view = view_;
    deliver([this, commands, view] { emit overlayReady(commands, view); });
}

void SessionWorker::check(const RunStatus& status, bool fatal) {
    if (status.ok()) return;
    const QString text = QString::fromStdString(status.message);
    const int code = static_cast<int>(status.code);
    deliver([this, text, code, fatal] { emit failed(text, code, fatal); });
}

std::string SessionWorker::chooseFile(const std::string& path, const std::string& extension) {
    auto answer = std::make_shared<std::promise<std::string>>();
    std::future<std::string> future = answer->get_future();
    const QString start = QString::fromStdString(path);
    const QString kind = QString::fromStdString(extension);
    deliver([this, start, kind, answer] {
        answer->set_value(chooser ? chooser(start, kind).toStdString() : std::string());
    });
    while (future.wait_for(std::chrono::milliseconds(50)) != std::future_status::ready) {
        std::lock_guard<std::mutex> lock(mutex_);
        if (stopping_) return "";
    }
    return future.get();
}

int SessionWorker::confirm(const std::string& question) {
    auto answer = std::make_shared<std::promise<int>>();
    std::future<int> future = answer->get_future();
    const QString text = QString::fromStdString(question);
    deliver([this, text, answer] { answer->set_value(asker && asker(text) ? 1 : 0); });
    while (future.wait_for(std::chrono::milliseconds(50)) != std::future_status::ready) {
        std::lock_guard<std::mutex> lock(mutex_);
        if (stopping_) return 0;
    }
    return future.get();
}

void SessionWorker::describeControls() {
    std::vector<ControlDescription> out;
    for (const Control& control : session_->controls().controls()) {
        ControlDescription d;
        d.kind = control.kind;
        d.name = control.name;
        d.symbol = control.symbol;
        d.number = control.number;
        d.page = ViewSession::pageOf(control);
        d.entries = control.entries;
        fillTitles(control, &d);
        if (control.kind == ControlKind::Float) {
            const auto* record = static_cast<SparkFloatStruct*>(control.record);
            d.minimum = record->Min;
            d.maximum = record->Max;
            d.increment = record->Increment;
            d.decimals = decimalsOf(floatTitle(control));
        } else if (control.kind == ControlKind::Integer) {
            const auto* record = static_cast<SparkIntStruct*>(control.record);
            d.minimum = record->Min;
            d.maximum = record->Max;
            d.increment = record->Increment;
            d.decimals = 0;
        }
        out.push_back(d);
    }
    deliver([this, out] {
        descriptions_ = out;
        emit pluginLoaded();
    });
}

void SessionWorker::begin() {
    post(kOnce, [this](StepResult&) {
        session_ = std::make_unique<ViewSession>(options_);
        const RunStatus status = session_->loadPlugin();
        if (!status.ok()) return check(status, true);
        simhost::Host& host = simhost::Host::instance();
        host.confirmSink = [this](const std::string& question) { return confirm(question); };
        host.fileBrowserSink = [this](const std::string& path, const std::string& extension) {
            return chooseFile(path, extension);
        };
        host.cursorSink = [this](int kind) { deliver([this, kind] { emit cursorChanged(kind); }); };
        describeControls();
        loaded_ = true;
    });
    if (!options_.files.empty())
        open(QString::fromStdString(options_.files.front()),
             QString::fromStdString(options_.frames));
}

void SessionWorker::open(const QString& name, const QString& frames) {
    const std::string file = name.toStdString();
    const std::string range = frames.toStdString();
    post(kOnce, [this, file, range](StepResult& step) {
        if (!loaded_) return;
        const RunStatus status = session_->open(file, range, &step);
        if (session_->started()) {
            std::map<int, QString> titles;
            for (int page = 0; page < 5; ++page)
                titles[page] = QString::fromStdString(session_->pageTitle(page));
            const QString shown = QString::fromStdString(session_->imageName());
            const auto frames = session_->frames();
            const unsigned frame = session_->frame();
            deliver([this, titles, shown, frames, frame] {
                emit pagesTitled(titles);
                emit opened(shown, frames, frame);
            });
        }
        check(status);
    });
}

void SessionWorker::showFrame(unsigned frame) {
    post(kFrame, [this, frame](StepResult& step) {
        if (loaded_) check(session_->showFrame(frame, &step));
    });
}

void SessionWorker::render() {
    post(kOnce, [this](StepResult& step) {
        if (loaded_) check(session_->render(&step));
    });
}

void SessionWorker::setNumber(size_t control, double value) {
    post(kValueBase + static_cast<int>(control), [this, control, value](StepResult& step) {
        check(session_->setNumber(control, value, &step));
    });
}

void SessionWorker::setEntry(size_t control, int entry) {
    post(kOnce, [this, control, entry](StepResult& step) {
        check(session_->setEntry(control, entry, &step));
    });
}

void SessionWorker::setOn(size_t control, bool on) {
    post(kOnce,
         [this, control, on](StepResult& step) { check(session_->setOn(control, on, &step)); });
}

void SessionWorker::press(size_t control) {
    post(kOnce, [this, control](StepResult& step) { check(session_->press(control, &step)); });
}

void SessionWorker::detectLines() {
    post(kOnce, [this](StepResult& step) { check(session_->detectLines(&step)); });
}

void SessionWorker::toggleKey(size_t control) {
    post(kOnce, [this, control](StepResult& step) { check(session_->toggleKey(control, &step)); });
}

void SessionWorker::pointer(PointerEvent event, const ViewPlacement& view, int sx, int sy, float x,
                            float y, float pressure) {
    // Back-to-back moves, or drags, replace each other; presses and releases never.
    const int replaces = event == PointerEvent::Move   ? kMove
                         : event == PointerEvent::Drag ? kDrag
                                                       : kOnce;
    post(replaces, [this, view, sx, sy, x, y, pressure](StepResult& step) {
        if (!loaded_) return;
        view_ = view;
        bool moved = false;
        check(session_->pointer(view, sx, sy, x, y, pressure, &step, &moved));
        if (moved && session_->autoPreview()) {
            std::lock_guard<std::mutex> lock(mutex_);
            renderWanted_ = true;
        }
    });
}

void SessionWorker::setView(const ViewPlacement& view) {
    post(kView, [this, view](StepResult&) { view_ = view; });
}

void SessionWorker::saveSetup(const QString& path, bool remember) {
    const std::string file = path.toStdString();
    post(kOnce, [this, file, path, remember](StepResult&) {
        if (!loaded_) return;
        const RunStatus status = session_->saveSetup(file, remember);
        check(status);
        if (status.ok()) deliver([this, path] { emit setupSaved(path); });
    });
}

void SessionWorker::loadSetup(const QString& path) {
    const std::string file = path.toStdString();
    post(kOnce, [this, file, path](StepResult& step) {
        if (!loaded_) return;
        const RunStatus status = session_->loadSetup(file, &step);
        check(status);
        if (status.ok()) deliver([this, path] { emit setupLoaded(path); });
    });
}
