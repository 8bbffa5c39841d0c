#include "gui/progress_bar.hpp"

#include <QPainter>

namespace varo::gui {

namespace {
const QColor Navy(0, 0, 128);
}

ProgressBar::ProgressBar(QWidget* parent) : QWidget(parent) {
    setMinimumHeight(22);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ProgressBar::setProgress(long current, long total, const QString& caption) {
    current_ = current;
    total_ = total;
    caption_ = caption;
    update();
}

void ProgressBar::clear() {
    setProgress(0, 0, QString());
}

void ProgressBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect area = rect().adjusted(0, 0, -1, -1);
    painter.fillRect(area, palette().base());
    painter.setPen(palette().mid().color());
    painter.drawRect(area);
    const int filled = static_cast<int>(std::clamp(fraction(), 0.0, 1.0) * area.width());
    const QRect bar(area.left(), area.top(), filled, area.height());
    painter.fillRect(bar, Navy);
    // The caption in the text colour outside the bar and in white over it.
    painter.setPen(palette().text().color());
    painter.drawText(area, Qt::AlignCenter, caption_);
    painter.setClipRect(bar);
    painter.setPen(Qt::white);
    painter.drawText(area, Qt::AlignCenter, caption_);
}

} // namespace varo::gui
