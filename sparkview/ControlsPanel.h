// ControlsPanel: the plug-in's controls as the host shows them, made from
// the records it exports: one tab per page the records name (in page order,
// titled as the plug-in titled them), the controls of a page in record
// order. A float or integer field is a spin box with a slider over the
// record's range and increment, and a key button that sets or removes an
// animation key at the current frame; a menu is a combo box of the
// plug-in's own entry strings; a check box and a push button show the
// record's title. Every control widget's accessible name is the control's
// name as exported ("Radial1", "LineEdit", "AutoFind"), so a keyboard user
// and accessibility tools find it by the name the plug-in gives it.
//
// A change made by the user is signalled with the control's index (record
// order); values set by the program (setValues) are shown without signals.
#pragma once

#include <QWidget>
#include <map>
#include <vector>

#include "SessionWorker.h"

class QTabWidget;

class ControlsPanel : public QWidget {
    Q_OBJECT
  public:
    explicit ControlsPanel(QWidget* parent = nullptr);

    void build(const std::vector<ControlDescription>& controls);
    void setPageTitles(const std::map<int, QString>& titles);
    void setValues(const std::vector<ControlValue>& values, unsigned frame);
    // The widgets of control `index` (a float's spin box and slider; one otherwise).
    std::vector<QWidget*> widgetsOf(size_t index) const;

  signals:
    void numberChanged(size_t index, double value);
    void entryChanged(size_t index, int entry);
    void toggled(size_t index, bool on);
    void pressed(size_t index);
    void keyToggled(size_t index);

  private:
    struct Row {
        ControlDescription description;
        std::vector<QWidget*> widgets;
        QWidget* keyButton = nullptr;
        int page = 0;
    };
    QWidget* makeNumber(size_t index, Row& row);
    QWidget* makeMenu(size_t index, Row& row);
    QWidget* makeCheck(size_t index, Row& row);
    QWidget* makeButton(size_t index, Row& row);
    void showValue(const Row& row, const ControlValue& value, unsigned frame);

    QTabWidget* tabs_ = nullptr;
    std::vector<Row> rows_;
    std::map<int, int> tabOfPage_;
};
