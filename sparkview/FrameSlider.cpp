// The frame slider and its key marks.
#include "FrameSlider.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionSlider>
#include <algorithm>

namespace {
const int kMarkSize = 5;
const QColor kMarkColour(230, 180, 40);
}  // namespace

FrameSlider::FrameSlider(QWidget* parent) : QSlider(Qt::Horizontal, parent) {
    setAccessibleName("Frame");
    setFocusPolicy(Qt::StrongFocus);
    setRange(0, 0);
    setMinimumHeight(24);
}

void FrameSlider::setFrames(const std::vector<unsigned>& frames) {
    frames_ = frames;
    const QSignalBlocker block(this);
    setRange(0, std::max<int>(0, static_cast<int>(frames_.size()) - 1));
    setPageStep(std::max(1, static_cast<int>(frames_.size()) / 10));
    setEnabled(frames_.size() > 1);
}

unsigned FrameSlider::frame() const {
    return frames_.empty() ? 0 : frames_[static_cast<size_t>(value())];
}

void FrameSlider::setFrame(unsigned frame) {
    const auto found = std::lower_bound(frames_.begin(), frames_.end(), frame);
    if (found == frames_.end() || *found != frame) return;
    const QSignalBlocker block(this);
    setValue(static_cast<int>(found - frames_.begin()));
}

void FrameSlider::setKeyFrames(const std::vector<int>& keyFrames) {
    std::vector<int> marked;
    for (int key : keyFrames) {
        const auto found =
            std::lower_bound(frames_.begin(), frames_.end(), static_cast<unsigned>(key));
        if (key >= 0 && found != frames_.end() && *found == static_cast<unsigned>(key))
            marked.push_back(static_cast<int>(found - frames_.begin()));
    }
    std::sort(marked.begin(), marked.end());
    marked.erase(std::unique(marked.begin(), marked.end()), marked.end());
    if (marked != marked_) {
        marked_ = marked;
        update();
    }
}

void FrameSlider::paintEvent(QPaintEvent* event) {
    QSlider::paintEvent(event);
    if (marked_.empty()) return;
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRect groove =
        style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderGroove, this);
    const QRect handle =
        style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    const int span = groove.width() - handle.width();
    QPainter painter(this);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kMarkColour);
    for (int index : marked_) {
        const int x = groove.x() + handle.width() / 2 +
                      QStyle::sliderPositionFromValue(minimum(), maximum(), index, span);
        const int y = height() - kMarkSize - 1;
        const QPoint triangle[3] = {
            {x, y}, {x - kMarkSize, y + kMarkSize}, {x + kMarkSize, y + kMarkSize}};
        painter.drawPolygon(triangle, 3);
    }
}
