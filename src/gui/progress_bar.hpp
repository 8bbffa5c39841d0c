// The progress picture of a screen: a navy bar growing from left to right in proportion
// to current over total, with the phase's caption centred and readable above the bar.
#pragma once

#include <QWidget>

namespace varo::gui {

class ProgressBar : public QWidget {
    Q_OBJECT
public:
    explicit ProgressBar(QWidget* parent = nullptr);

    void setProgress(long current, long total, const QString& caption);
    void clear();
    QString caption() const { return caption_; }
    double fraction() const { return total_ > 0 ? static_cast<double>(current_) / total_ : 0.0; }

    QSize sizeHint() const override { return {400, 24}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    long current_ = 0;
    long total_ = 0;
    QString caption_;
};

} // namespace varo::gui
