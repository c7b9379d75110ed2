// Building and updating the controls panel.
#include "ControlsPanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QSlider>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

namespace {
const int kMaxSliderSteps = 1000000;
const double kOpenRange = 1e9;  // a field without a range

QString trimmedTitle(const std::string& title) { return QString::fromStdString(title).trimmed(); }

// Slider positions: steps of the record's increment from its minimum.
struct SliderScale {
    double minimum = 0.0;
    double step = 1.0;
    int steps = 0;
};

SliderScale sliderScale(const ControlDescription& d) {
    SliderScale scale;
    if (!(d.minimum < d.maximum)) return scale;
    scale.minimum = d.minimum;
    scale.step = d.increment > 0.0 ? d.increment : (d.maximum - d.minimum) / 1000.0;
    double steps = std::round((d.maximum - d.minimum) / scale.step);
    if (steps > kMaxSliderSteps) {
        steps = kMaxSliderSteps;
        scale.step = (d.maximum - d.minimum) / steps;
    }
    scale.steps = static_cast<int>(steps);
    return scale;
}
}  // namespace

ControlsPanel::ControlsPanel(QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    tabs_ = new QTabWidget(this);
    tabs_->setAccessibleName("Pages");
    layout->addWidget(tabs_);
}

QWidget* ControlsPanel::makeNumber(size_t index, Row& row) {
    const ControlDescription& d = row.description;
    const QString name = QString::fromStdString(d.name);
    auto* box = new QWidget;
    auto* layout = new QHBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* spin = new QDoubleSpinBox;
    spin->setAccessibleName(name);
    spin->setDecimals(std::clamp(d.decimals, 0, 9));
    if (d.minimum < d.maximum)
        spin->setRange(d.minimum, d.maximum);
    else
        spin->setRange(-kOpenRange, kOpenRange);
    spin->setSingleStep(d.increment > 0.0 ? d.increment : std::pow(10.0, -spin->decimals()));
    spin->setKeyboardTracking(false);
    auto* slider = new QSlider(Qt::Horizontal);
    slider->setAccessibleName(name);
    slider->setAccessibleDescription("slider");
    slider->setFocusPolicy(Qt::StrongFocus);
    const SliderScale scale = sliderScale(d);
    slider->setRange(0, scale.steps);
    slider->setEnabled(scale.steps > 0);
    auto* key = new QToolButton;
    key->setText(QString::fromUtf8("\u25C6"));
    key->setCheckable(true);
    key->setAccessibleName("Key " + name);
    key->setToolTip("Set or remove the animation key of " + name + " at this frame");
    key->setVisible(d.kind == ControlKind::Float);
    layout->addWidget(spin);
    layout->addWidget(slider, 1);
    layout->addWidget(key);
    connect(
        spin, qOverload<double>(&QDoubleSpinBox::valueChanged), this,
        [this, index, slider, scale](double value) {
            const QSignalBlocker block(slider);
            slider->setValue(static_cast<int>(std::lround((value - scale.minimum) / scale.step)));
            emit numberChanged(index, value);
        });
    connect(slider, &QSlider::valueChanged, this,
            [spin, scale](int position) { spin->setValue(scale.minimum + position * scale.step); });
    connect(key, &QToolButton::clicked, this, [this, index] { emit keyToggled(index); });
    row.widgets = {spin, slider};
    row.keyButton = key;
    return box;
}

QWidget* ControlsPanel::makeMenu(size_t index, Row& row) {
    auto* combo = new QComboBox;
    combo->setAccessibleName(QString::fromStdString(row.description.name));
    for (const std::string& title : row.description.titles) combo->addItem(trimmedTitle(title));
    connect(combo, qOverload<int>(&QComboBox::activated), this,
            [this, index](int entry) { emit entryChanged(index, entry); });
    row.widgets = {combo};
    return combo;
}

QWidget* ControlsPanel::makeCheck(size_t index, Row& row) {
    auto* check = new QCheckBox(trimmedTitle(row.description.title));
    check->setAccessibleName(QString::fromStdString(row.description.name));
    connect(check, &QCheckBox::clicked, this, [this, index](bool on) { emit toggled(index, on); });
    row.widgets = {check};
    return check;
}

QWidget* ControlsPanel::makeButton(size_t index, Row& row) {
    auto* button = new QPushButton(trimmedTitle(row.description.title));
    button->setAccessibleName(QString::fromStdString(row.description.name));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, index] { emit pressed(index); });
    row.widgets = {button};
    return button;
}

void ControlsPanel::build(const std::vector<ControlDescription>& controls) {
    tabs_->clear();
    rows_.clear();
    tabOfPage_.clear();
    std::map<int, QFormLayout*> forms;
    for (const ControlDescription& d : controls)
        if (d.kind != ControlKind::Text && d.kind != ControlKind::Colour) forms[d.page] = nullptr;
    for (auto& page : forms) {
        auto* scroll = new QScrollArea;
        scroll->setWidgetResizable(true);
        auto* content = new QWidget;
        page.second = new QFormLayout(content);
        scroll->setWidget(content);
        tabOfPage_[page.first] = tabs_->addTab(scroll, QString("Page %1").arg(page.first + 1));
    }
    rows_.resize(controls.size());
    for (size_t i = 0; i < controls.size(); ++i) {
        Row& row = rows_[i];
        row.description = controls[i];
        row.page = controls[i].page;
        QWidget* field = nullptr;
        switch (row.description.kind) {
            case ControlKind::Float:
            case ControlKind::Integer:
                field = makeNumber(i, row);
                break;
            case ControlKind::Menu:
                field = makeMenu(i, row);
                break;
            case ControlKind::Check:
                field = makeCheck(i, row);
                break;
            case ControlKind::Button:
                field = makeButton(i, row);
                break;
            default:
                continue;  // text and colour fields are not shown
        }
        const bool labelled = row.description.kind == ControlKind::Float ||
                              row.description.kind == ControlKind::Integer ||
                              row.description.kind == ControlKind::Menu;
        QFormLayout* form = forms[row.page];
        if (labelled)
            form->addRow(QString::fromStdString(row.description.name), field);
        else
            form->addRow(field);
    }
}

void ControlsPanel::setPageTitles(const std::map<int, QString>& titles) {
    for (const auto& page : tabOfPage_) {
        const auto found = titles.find(page.first);
        if (found != titles.end() && !found->second.isEmpty())
            tabs_->setTabText(page.second, found->second);
    }
}

std::vector<QWidget*> ControlsPanel::widgetsOf(size_t index) const {
    return index < rows_.size() ? rows_[index].widgets : std::vector<QWidget*>{};
}

void ControlsPanel::showValue(const Row& row, const ControlValue& value, unsigned frame) {
    if (row.widgets.empty()) return;
    switch (row.description.kind) {
        case ControlKind::Float:
        case ControlKind::Integer: {
            auto* spin = static_cast<QDoubleSpinBox*>(row.widgets[0]);
            auto* slider = static_cast<QSlider*>(row.widgets[1]);
            if (!slider->isSliderDown() && spin->value() != value.number) {
                const QSignalBlocker block(spin);
                const QSignalBlocker blockSlider(slider);
                spin->setValue(value.number);
                const SliderScale scale = sliderScale(row.description);
                slider->setValue(
                    static_cast<int>(std::lround((spin->value() - scale.minimum) / scale.step)));
            }
            auto* key = static_cast<QToolButton*>(row.keyButton);
            const bool keyed = std::find(value.keyFrames.begin(), value.keyFrames.end(),
                                         static_cast<int>(frame)) != value.keyFrames.end();
            key->setChecked(keyed);
            key->setStyleSheet(value.keyFrames.empty() ? "" : "color: rgb(230, 180, 40);");
            break;
        }
        case ControlKind::Menu: {
            auto* combo = static_cast<QComboBox*>(row.widgets[0]);
            const QSignalBlocker block(combo);
            combo->setCurrentIndex(value.entry);
            break;
        }
        case ControlKind::Check: {
            auto* check = static_cast<QCheckBox*>(row.widgets[0]);
            const QSignalBlocker block(check);
            check->setChecked(value.on);
            break;
        }
        default:
            break;
    }
}

void ControlsPanel::setValues(const std::vector<ControlValue>& values, unsigned frame) {
    for (size_t i = 0; i < rows_.size() && i < values.size(); ++i)
        showValue(rows_[i], values[i], frame);
}
