// sparkview's units in process: where the frame sits in the viewer, the
// controls panel made from the real plug-in's records, and the plug-in's
// thread answering control changes and pointer events as the host does.
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>
#include <set>

#include "ControlsPanel.h"
#include "ImageFiles.h"
#include "OverlayCapture.h"
#include "ReaderProcess.h"
#include "SessionWorker.h"
#include "ViewerGeometry.h"

Q_DECLARE_METATYPE(std::shared_ptr<const DisplayFrame>)

class SparkviewTest : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase();
    void geometryPlacesAndZooms();
    void panelShowsTheRecordsByTheirNames();
    void workerDrivesThePluginAsTheHost();

  private:
    // One plug-in session per process, as in the programs.
    QTemporaryDir folder_;
    std::unique_ptr<SessionWorker> worker_;
    std::unique_ptr<QSignalSpy> frames_;
};

void SparkviewTest::geometryPlacesAndZooms() {
    ViewerGeometry g;
    g.setViewerSize(800, 600);
    g.setFrameSize(400, 200);
    g.fit();  // across 2, down 3: the frame fills the width
    QCOMPARE(g.scale(), 2.0);
    // Frame centre (199.5, 99.5) on the viewer's centre (399.5, 299.5), the
    // origin rounded to a whole pixel: round(399.5 - 199.5 * 2) = 1.
    QCOMPARE(g.originX(), 1);
    QCOMPARE(g.screenFromFrame({199.5, 99.5}).x, 400.0);
    QCOMPARE(g.originY(), 101);  // round(299.5 - 99.5 * 2), halves away from zero
    QCOMPARE(g.zoomArgument(), 2.0f);
    g.oneToOne();
    QCOMPARE(g.scale(), 1.0);
    QCOMPARE(g.originX(), 200);  // round(399.5 - 199.5)
    // Zooming about a point keeps the frame point under it (to the whole pixel).
    const ScreenPoint pointer{300.0, 400.0};
    const ScreenPoint held = g.frameFromScreen(pointer);
    g.zoomAbout(pointer, 0.5);
    QCOMPARE(g.scale(), 0.5);
    QCOMPARE(g.zoomArgument(), -2.0f);  // a half size is coded -2
    const ScreenPoint back = g.screenFromFrame(held);
    QVERIFY(std::abs(back.x - pointer.x) <= 0.5 && std::abs(back.y - pointer.y) <= 0.5);
    g.zoomAbout(pointer, 1e6);
    QCOMPARE(g.scale(), ViewerGeometry::kMaxScale);
    g.pan(5, -7);
    const ScreenPoint moved = g.frameFromScreen({g.originX() + 0.0, g.originY() + 0.0});
    QCOMPARE(moved.x, 0.0);
    QCOMPARE(moved.y, 0.0);
}

namespace {
RunOptions pluginOptions() {
    RunOptions options;
    options.viewer = true;
    options.pluginPath = STRAIGHTLUX_PLUGIN;
    options.processors = 2;
    options.quiet = true;
    return options;
}

std::set<QString> accessibleNames(QWidget& root) {
    std::set<QString> names;
    for (QWidget* widget : root.findChildren<QWidget*>()) names.insert(widget->accessibleName());
    return names;
}
}  // namespace

void SparkviewTest::initTestCase() {
    qRegisterMetaType<std::shared_ptr<const DisplayFrame>>();
    const std::string image = folder_.filePath("plate.png").toStdString();
    RgbSamples samples;
    samples.type = SampleType::Eight;
    samples.eights.assign(64 * 48 * 3, 0);
    for (size_t i = 0; i < samples.eights.size(); ++i)
        samples.eights[i] = static_cast<uint8_t>(i * 7);
    QVERIFY(writeImage(image, 64, 48, samples).ok());
    RunOptions options = pluginOptions();
    options.files = {image};
    worker_ = std::make_unique<SessionWorker>(options);
    frames_ = std::make_unique<QSignalSpy>(worker_.get(), &SessionWorker::frameReady);
    QSignalSpy loaded(worker_.get(), &SessionWorker::pluginLoaded);
    worker_->begin();
    QVERIFY(loaded.wait(30000));
}

void SparkviewTest::panelShowsTheRecordsByTheirNames() {
    SessionWorker& worker = *worker_;
    ControlsPanel panel;
    panel.build(worker.descriptions());
    const std::set<QString> names = accessibleNames(panel);
    for (const char* name : {"Radial1", "Radial2", "Centre X", "Centre Y", "Sampling", "LineEdit",
                             "KillLines", "AutoFind", "Mode", "View", "Blend", "Reset",
                             "Clear Overlay", "Help", "Proxy", "Auto Preview"})
        QVERIFY2(names.count(name), name);
    const auto& d = worker.descriptions();
    size_t lineEdit = 0, radial1 = 0;
    for (size_t i = 0; i < d.size(); ++i) {
        if (d[i].name == "LineEdit") lineEdit = i;
        if (d[i].name == "Radial1") radial1 = i;
    }
    auto* combo = qobject_cast<QComboBox*>(panel.widgetsOf(lineEdit).at(0));
    QVERIFY(combo);
    QCOMPARE(combo->count(), 6);
    QCOMPARE(combo->itemText(1), QString("LineEdit: Add Line"));  // the plug-in's own string
    auto* spin = qobject_cast<QDoubleSpinBox*>(panel.widgetsOf(radial1).at(0));
    QVERIFY(spin);
    QCOMPARE(spin->minimum(), -1.0);
    QCOMPARE(spin->maximum(), 3.0);
    QCOMPARE(spin->decimals(), 3);  // "Radial1: %.3f"
    // Every control widget takes the keyboard focus.
    for (size_t i = 0; i < d.size(); ++i)
        for (QWidget* widget : panel.widgetsOf(i)) QVERIFY(widget->focusPolicy() & Qt::TabFocus);
}

void SparkviewTest::workerDrivesThePluginAsTheHost() {
    SessionWorker& worker = *worker_;
    QSignalSpy& frames = *frames_;
    QSignalSpy messages(&worker, &SessionWorker::message);
    std::vector<ControlValue> values;
    connect(&worker, &SessionWorker::valuesChanged, this,
            [&values](std::vector<ControlValue> v, bool, bool) { values = v; });
    worker.render();
    QTRY_VERIFY_WITH_TIMEOUT(frames.count() >= 1 && worker.pending() == 0, 30000);
    const auto& d = worker.descriptions();
    auto indexOf = [&d](const char* name) {
        for (size_t i = 0; i < d.size(); ++i)
            if (d[i].name == name) return i;
        return d.size();
    };
    // A changed field goes to the plug-in, which re-renders ("Auto Preview").
    const int before = frames.count();
    worker.setNumber(indexOf("Radial1"), 0.2);
    QTRY_VERIFY_WITH_TIMEOUT(frames.count() > before && worker.pending() == 0, 30000);
    QTRY_COMPARE_WITH_TIMEOUT(values.at(indexOf("Radial1")).number, 0.2f, 5000);
    // AutoFind without lines: the plug-in's own message reaches the window.
    worker.press(indexOf("AutoFind"));
    QTRY_VERIFY_WITH_TIMEOUT(!messages.isEmpty(), 30000);
    QCOMPARE(messages.last().at(0).toString(), QString("Need drawn lines to auto remove."));
    // Dragging the centre in frame units, y up: (32, 24) is the centre of 64x48.
    ViewPlacement view;  // scale 1, origin (0, 0)
    using P = SessionWorker::PointerEvent;
    worker.pointer(P::Press, view, 32, 24, 32.0f, 24.0f, 1.0f);
    worker.pointer(P::Drag, view, 40, 30, 40.0f, 30.0f, 1.0f);
    worker.pointer(P::Release, view, 40, 30, 40.0f, 30.0f, 0.0f);
    QTRY_COMPARE_WITH_TIMEOUT(values.at(indexOf("Centre X")).number, 62.5, 30000);
    QCOMPARE(values.at(indexOf("Centre Y")).number, 62.5);  // 30 of 48 rows up from the bottom
    // A key at the current frame shows on the control.
    worker.toggleKey(indexOf("Radial2"));
    QTRY_VERIFY_WITH_TIMEOUT(values.at(indexOf("Radial2")).keyFrames == std::vector<int>{1}, 30000);
}

int main(int argc, char** argv) {
    // Pictures are decoded by this program started afresh (ReaderProcess.h).
    if (argc == 2 && std::string(argv[1]) == kReaderProcessArgument) return serveReaderRequests();
    QApplication app(argc, argv);
    configureImageLibrary();
    installOverlayCapture();
    SparkviewTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "SparkviewTest.moc"
