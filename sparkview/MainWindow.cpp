// sparkview's window.
#include "MainWindow.h"

#include <unistd.h>

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressDialog>
#include <QRandomGenerator>
#include <QSplitter>
#include <QStatusBar>
#include <QVBoxLayout>
#include <algorithm>

#include "ControlsPanel.h"
#include "FrameSlider.h"
#include "OptionRules.h"
#include "RenderJob.h"
#include "ViewerWidget.h"

namespace {
const char kProgram[] = "sparkview";
const int kMessageMilliseconds = 8000;
const int kPanelWidth = 380;
const char kUnsavedQuestion[] =
    "The set-up has changes that are not saved. Save them before quitting?\n\n"
    "The drawn lines go with the plug-in when it is unloaded: a set-up holds control values "
    "only.";
}  // namespace

MainWindow::MainWindow(const RunOptions& options, QWidget* parent)
    : QMainWindow(parent), options_(options), worker_(std::make_unique<SessionWorker>(options)) {
    setupPath_ = QString::fromStdString(!options.saveSetupPath.empty() ? options.saveSetupPath
                                                                       : options.setupPath);
    showError = [this](const QString& text) { QMessageBox::critical(this, kProgram, text); };
    askUnsaved = [this](const QString& question) {
        const auto answer = QMessageBox::question(
            this, kProgram, question,
            QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
        return answer == QMessageBox::Save      ? UnsavedAnswer::Save
               : answer == QMessageBox::Discard ? UnsavedAnswer::Discard
                                                : UnsavedAnswer::Cancel;
    };
    worker_->asker = [this](const QString& question) {
        return QMessageBox::question(this, kProgram, question) == QMessageBox::Yes;
    };
    worker_->chooser = [this](const QString& path, const QString& extension) {
        const QString filter = extension.isEmpty()
                                   ? QString("All files (*)")
                                   : QString("*%1 files (*%1);;All files (*)").arg(extension);
        return QFileDialog::getOpenFileName(this, "Choose a file for the plug-in", path, filter);
    };
    viewer_ = new ViewerWidget;
    slider_ = new FrameSlider;
    frameLabel_ = new QLabel("Frame -");
    panel_ = new ControlsPanel;
    auto* left = new QWidget;
    auto* leftLayout = new QVBoxLayout(left);
    leftLayout->setContentsMargins(0, 0, 0, 0);
    leftLayout->addWidget(viewer_, 1);
    auto* bar = new QHBoxLayout;
    bar->addWidget(frameLabel_);
    bar->addWidget(slider_, 1);
    leftLayout->addLayout(bar);
    auto* split = new QSplitter;
    split->addWidget(left);
    split->addWidget(panel_);
    split->setStretchFactor(0, 3);
    split->setStretchFactor(1, 1);
    panel_->setMinimumWidth(kPanelWidth);
    setCentralWidget(split);
    shownLabel_ = new QLabel("Result");
    statusBar()->addPermanentWidget(shownLabel_);
    render_ = new RenderJob(options_, this);
    setTabOrder(viewer_, slider_);
    setTabOrder(slider_, panel_);
    makeMenus();
    connectWorker();
    connectPanel();
    updateTitle();
    viewer_->setFocus();
    worker_->begin();
}

MainWindow::~MainWindow() {
    render_->cancel();
    worker_.reset();  // stops the plug-in's thread before the widgets go
}

void MainWindow::makeMenus() {
    makeFileMenu();
    makeViewMenu();
    makeLinesMenu();
}

void MainWindow::makeFileMenu() {
    QMenu* file = menuBar()->addMenu("&File");
    file->addAction("&Open...", QKeySequence::Open, this, [this] {
        const QString name =
            QFileDialog::getOpenFileName(this, "Open an image or a frame of a sequence");
        if (!name.isEmpty()) openImage(name);
    });
    file->addAction("&Load Set-up...", this, [this] {
        const QString name = QFileDialog::getOpenFileName(this, "Load a set-up", QString(),
                                                          "Set-ups (*.setup);;All files (*)");
        if (!name.isEmpty()) loadSetupFrom(name);
    });
    file->addAction("&Save Set-up", QKeySequence(Qt::CTRL | Qt::Key_S), this,
                    [this] { saveSetup(); });
    file->addAction("Save Set-up &As...", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S), this,
                    [this] { saveSetupAs(); });
    file->addSeparator();
    file->addAction("&Render...", QKeySequence(Qt::CTRL | Qt::Key_R), this,
                    [this] { chooseRender(); });
    file->addSeparator();
    file->addAction("&Quit", QKeySequence(Qt::CTRL | Qt::Key_Q), this, [this] { close(); });
}

void MainWindow::makeViewMenu() {
    // The viewer takes these keys itself while it has the focus; the menu shows them.
    QMenu* view = menuBar()->addMenu("&View");
    view->addAction("Fit\tF", this, [this] { viewer_->fit(); });
    view->addAction("One to One\t1", this, [this] { viewer_->oneToOne(); });
    view->addAction("Input / Result\tTab", this, [this] { viewer_->toggleInput(); });
    view->addAction("Previous Frame\tLeft", this, [this] { stepFrame(-1); });
    view->addAction("Next Frame\tRight", this, [this] { stepFrame(1); });
}

void MainWindow::makeLinesMenu() {
    // Line detection, then the plug-in's own line buttons.
    linesMenu_ = menuBar()->addMenu("&Lines");
    linesMenu_->addAction("&Detect Lines", QKeySequence(Qt::CTRL | Qt::Key_D), this,
                          [this] { worker_->detectLines(); });
    linesMenu_->addAction("&AutoFind", this, [this] { pressButtonNamed("AutoFind"); });
    linesMenu_->addAction("&Kill Lines", this, [this] { pressButtonNamed("KillLines"); });
}

void MainWindow::pressButtonNamed(const char* name) {
    const auto& controls = worker_->descriptions();
    for (size_t i = 0; i < controls.size(); ++i)
        if (controls[i].kind == ControlKind::Button && controls[i].name == name)
            return worker_->press(i);
    showError(QString("The plug-in has no \"%1\" button.").arg(name));
}

void MainWindow::connectWorker() {
    SessionWorker* w = worker_.get();
    connect(w, &SessionWorker::pluginLoaded, this,
            [this] { panel_->build(worker_->descriptions()); });
    connect(w, &SessionWorker::pagesTitled, panel_, &ControlsPanel::setPageTitles);
    connect(w, &SessionWorker::opened, this, &MainWindow::onOpened);
    connect(w, &SessionWorker::frameReady, viewer_, &ViewerWidget::setFrames);
    connect(w, &SessionWorker::overlayReady, viewer_, &ViewerWidget::setOverlay);
    connect(w, &SessionWorker::valuesChanged, this, &MainWindow::onValues);
    connect(w, &SessionWorker::message, this,
            [this](const QString& text) { statusBar()->showMessage(text, kMessageMilliseconds); });
    connect(w, &SessionWorker::failed, this, &MainWindow::onFailed);
    connect(w, &SessionWorker::cursorChanged, viewer_, &ViewerWidget::setHostCursor);
    connect(w, &SessionWorker::setupSaved, this, [this](const QString& path) {
        if (path == renderSetup_) return;
        statusBar()->showMessage("Set-up saved: " + path, kMessageMilliseconds);
        if (closeAfterSave_) {
            closeConfirmed_ = true;
            close();
        }
    });
    connect(w, &SessionWorker::setupLoaded, this, [this](const QString& path) {
        statusBar()->showMessage("Set-up loaded: " + path, kMessageMilliseconds);
    });
    connect(w, &SessionWorker::idle, this, [this] {
        if (!worker_->pending()) emit settled();
    });
    connect(viewer_, &ViewerWidget::pointerEvent, w, &SessionWorker::pointer);
    connect(viewer_, &ViewerWidget::viewChanged, w, &SessionWorker::setView);
    connect(viewer_, &ViewerWidget::stepFrame, this, &MainWindow::stepFrame);
    connect(viewer_, &ViewerWidget::shownChanged, this, [this](bool input) {
        shownLabel_->setText(input ? "Input" : "Result");
        worker_->setView(viewer_->placement());  // reported settled once drawn
    });
    connect(viewer_, &ViewerWidget::glFailed, this, [this](const QString& why) { showError(why); });
    connect(slider_, &QSlider::valueChanged, this, [this] {
        frameLabel_->setText(QString("Frame %1").arg(slider_->frame()));
        worker_->showFrame(slider_->frame());
    });
}

void MainWindow::connectPanel() {
    SessionWorker* w = worker_.get();
    connect(panel_, &ControlsPanel::numberChanged, w, &SessionWorker::setNumber);
    connect(panel_, &ControlsPanel::entryChanged, w, &SessionWorker::setEntry);
    connect(panel_, &ControlsPanel::toggled, w, &SessionWorker::setOn);
    connect(panel_, &ControlsPanel::pressed, w, &SessionWorker::press);
    connect(panel_, &ControlsPanel::keyToggled, w, &SessionWorker::toggleKey);
}

void MainWindow::onFailed(const QString& text, int code, bool fatal) {
    statusBar()->showMessage(text, kMessageMilliseconds);
    showError(text);
    if (fatal) QCoreApplication::exit(code);
}

void MainWindow::onValues(const std::vector<ControlValue>& values, bool dirty, bool) {
    panel_->setValues(values, slider_->frame());
    std::vector<int> keys;
    for (const ControlValue& value : values)
        keys.insert(keys.end(), value.keyFrames.begin(), value.keyFrames.end());
    slider_->setKeyFrames(keys);
    dirty_ = dirty;
    updateTitle();
}

void MainWindow::onOpened(const QString& name, const std::vector<unsigned>& frames,
                          unsigned frame) {
    imageName_ = name;
    slider_->setFrames(frames);
    slider_->setFrame(frame);
    frameLabel_->setText(QString("Frame %1").arg(frame));
    updateTitle();
}

void MainWindow::updateTitle() {
    const QString file = imageName_.isEmpty() ? "no image" : QFileInfo(imageName_).fileName();
    setWindowTitle(QString("%1[*] - %2").arg(file, kProgram));
    setWindowModified(dirty_);
}

void MainWindow::stepFrame(int by) {
    const int next = std::clamp(slider_->value() + by, slider_->minimum(), slider_->maximum());
    slider_->setValue(next);
}

void MainWindow::openImage(const QString& name) { worker_->open(name, QString()); }

void MainWindow::saveSetupTo(const QString& path) {
    setupPath_ = path;
    worker_->saveSetup(path);
}

void MainWindow::loadSetupFrom(const QString& path) { worker_->loadSetup(path); }

void MainWindow::saveSetup() {
    if (setupPath_.isEmpty()) return saveSetupAs();
    saveSetupTo(setupPath_);
}

void MainWindow::saveSetupAs() {
    const QString name = QFileDialog::getSaveFileName(this, "Save the set-up", setupPath_,
                                                      "Set-ups (*.setup);;All files (*)");
    if (!name.isEmpty()) saveSetupTo(name);
}

void MainWindow::chooseRender() {
    if (imageName_.isEmpty()) return showError("Open an image or a sequence first.");
    const QString output = QFileDialog::getSaveFileName(
        this, "Render to (use #### for the frame number of a sequence)",
        QFileInfo(imageName_).dir().filePath("render.####.png"));
    if (!output.isEmpty()) renderTo(output);
}

void MainWindow::renderTo(const QString& output) {
    const std::vector<unsigned>& frames = slider_->frames();
    const RunStatus named = checkSequenceOutput(frames.size(), output.toStdString());
    if (!named.ok()) return showError(QString::fromStdString(named.message));
    if (render_->running()) return showError("A render is running.");
    renderSetup_ =
        QDir::temp().filePath(QString(".sparkview-render-%1-%2.setup")
                                  .arg(getpid())
                                  .arg(QRandomGenerator::global()->generate(), 8, 16, QChar('0')));
    worker_->saveSetup(renderSetup_, false);
    progress_ = new QProgressDialog("Rendering " + output, "Cancel", 0,
                                    static_cast<int>(frames.size()), this);
    progress_->setWindowModality(Qt::WindowModal);
    progress_->setMinimumDuration(0);
    progress_->setValue(0);
    connect(progress_, &QProgressDialog::canceled, render_, &RenderJob::cancel);
    connect(render_, &RenderJob::progressed, progress_,
            [this](int done, int) { progress_->setValue(done); });
    connect(render_, &RenderJob::finished, this,
            [this, output](bool ok, int code, const QString& errors, bool cancelled) {
                QFile::remove(renderSetup_);
                renderSetup_.clear();
                progress_->deleteLater();
                progress_ = nullptr;
                render_->disconnect(this);
                if (cancelled)
                    statusBar()->showMessage("Render cancelled; no partial frame was left",
                                             kMessageMilliseconds);
                else if (ok)
                    statusBar()->showMessage("Rendered " + output, kMessageMilliseconds);
                else
                    showError(
                        QString("The render failed (sparkrun exit %1):\n%2").arg(code).arg(errors));
                emit renderFinished(ok);
            });
    // The set-up is written on the plug-in's thread first; sparkrun starts once it is.
    connect(worker_.get(), &SessionWorker::setupSaved, render_,
            [this, output, frames](const QString& path) {
                if (path != renderSetup_) return;
                disconnect(worker_.get(), &SessionWorker::setupSaved, render_, nullptr);
                render_->start(path, imageName_, output, frames);
            });
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!dirty_ || closeConfirmed_) return event->accept();
    switch (askUnsaved(kUnsavedQuestion)) {
        case UnsavedAnswer::Save:
            event->ignore();
            closeAfterSave_ = true;
            saveSetup();
            break;
        case UnsavedAnswer::Discard:
            event->accept();
            break;
        case UnsavedAnswer::Cancel:
            event->ignore();
            break;
    }
}
