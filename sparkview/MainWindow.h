// MainWindow: sparkview's window. The viewer with its frame slider on the
// left, the plug-in's controls on the right, the File menu (Open, Load
// Set-up, Save Set-up, Save Set-up As, Render, Quit), the View menu (the
// viewer's keys), a Lines menu (the plug-in's line buttons; where line
// detection joins) and a status line with what the plug-in said.
//
// Everything the plug-in does goes through the SessionWorker; the window
// only asks and shows. Errors are shown in a dialog (`showError`); quitting
// with unsaved set-up changes asks first (`askUnsaved`), saying that the
// drawn lines go with the plug-in, since a set-up holds control values only.
// Both are functions so that tests can answer them.
#pragma once

#include <QMainWindow>
#include <functional>
#include <memory>

#include "RunOptions.h"
#include "SessionWorker.h"

class ControlsPanel;
class FrameSlider;
class QLabel;
class QMenu;
class QProgressDialog;
class RenderJob;
class ViewerWidget;

class MainWindow : public QMainWindow {
    Q_OBJECT
  public:
    explicit MainWindow(const RunOptions& options, QWidget* parent = nullptr);
    ~MainWindow() override;

    enum class UnsavedAnswer { Save, Discard, Cancel };
    std::function<void(const QString& text)> showError;
    std::function<UnsavedAnswer(const QString& question)> askUnsaved;

    SessionWorker& worker() { return *worker_; }
    ViewerWidget& viewer() { return *viewer_; }
    ControlsPanel& panel() { return *panel_; }
    FrameSlider& frameSlider() { return *slider_; }
    bool dirty() const { return dirty_; }
    // The file Save Set-up writes, empty until one is named.
    QString setupPath() const { return setupPath_; }

    void openImage(const QString& name);
    void saveSetupTo(const QString& path);
    void loadSetupFrom(const QString& path);
    // Renders the frames shown to output (a sequence pattern for several).
    void renderTo(const QString& output);

  signals:
    // The frame on screen is the one last asked for, with its overlay.
    void settled();
    void renderFinished(bool ok);

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    void makeMenus();
    void makeFileMenu();
    void makeViewMenu();
    void makeLinesMenu();
    void connectWorker();
    void connectPanel();
    void onFailed(const QString& text, int code, bool fatal);
    void onValues(const std::vector<ControlValue>& values, bool dirty, bool linesDrawn);
    void onOpened(const QString& name, const std::vector<unsigned>& frames, unsigned frame);
    void stepFrame(int by);
    void saveSetup();
    void saveSetupAs();
    void chooseRender();
    void updateTitle();
    void pressButtonNamed(const char* name);

    RunOptions options_;
    std::unique_ptr<SessionWorker> worker_;
    ViewerWidget* viewer_ = nullptr;
    ControlsPanel* panel_ = nullptr;
    FrameSlider* slider_ = nullptr;
    QLabel* frameLabel_ = nullptr;
    QLabel* shownLabel_ = nullptr;
    QMenu* linesMenu_ = nullptr;
    RenderJob* render_ = nullptr;
    QProgressDialog* progress_ = nullptr;
    QString renderSetup_;
    QString imageName_;
    QString setupPath_;
    bool dirty_ = false;
    bool closeAfterSave_ = false;
    bool closeConfirmed_ = false;
};
