// Writing the layout report.
#include "LayoutReport.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QWidget>

#include "MainWindow.h"
#include "ViewerWidget.h"

namespace {
QJsonArray rectOf(const QWidget* widget) {
    const QPoint at = widget->mapToGlobal(QPoint(0, 0));
    return {at.x(), at.y(), widget->width(), widget->height()};
}
}  // namespace

void writeLayoutReport(MainWindow& window, int settledCount) {
    const QString path = qEnvironmentVariable("SPARKVIEW_LAYOUT");
    if (path.isEmpty()) return;
    ViewerWidget& viewer = window.viewer();
    const ViewerGeometry& g = viewer.geometry();
    // Image pixel (0, 0) is frame point (0, height - 1); screen rows run down from the top.
    const ScreenPoint corner = g.screenFromFrame({0.0, g.frameHeight() - 1.0});
    const QPoint viewerAt = viewer.mapToGlobal(QPoint(0, 0));
    QJsonObject report;
    report["settled"] = settledCount;
    report["viewer"] = rectOf(&viewer);
    report["scale"] = g.scale();
    report["topLeftPixel"] =
        QJsonArray{viewerAt.x() + corner.x, viewerAt.y() + (g.viewerHeight() - 1 - corner.y)};
    report["shown"] = viewer.showingInput() ? "input" : "result";
    report["dirty"] = window.dirty();
    QJsonObject widgets;
    for (QWidget* widget : window.findChildren<QWidget*>())
        if (!widget->accessibleName().isEmpty() && widget->isVisible() &&
            !widgets.contains(widget->accessibleName()))
            widgets[widget->accessibleName()] = rectOf(widget);
    report["widgets"] = widgets;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return;
    file.write(QJsonDocument(report).toJson());
    file.commit();
}
