// FrameSlider: the frame slider under the viewer. Its positions are the
// indices of the frames shown (a sequence's frame numbers need not be
// contiguous); the frames that carry an animation key of any control are
// marked under the groove.
#pragma once

#include <QSlider>
#include <vector>

class FrameSlider : public QSlider {
    Q_OBJECT
  public:
    explicit FrameSlider(QWidget* parent = nullptr);

    void setFrames(const std::vector<unsigned>& frames);
    const std::vector<unsigned>& frames() const { return frames_; }
    unsigned frame() const;
    void setFrame(unsigned frame);  // no signal
    // Indices of the marked frames.
    void setKeyFrames(const std::vector<int>& keyFrames);
    const std::vector<int>& markedIndices() const { return marked_; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    std::vector<unsigned> frames_;
    std::vector<int> marked_;
};
