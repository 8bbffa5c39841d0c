// Drawing a chart model with Qt Charts: the chart the desktop screens show, and the same
// chart drawn into a PNG image or an SVG file of a given size, with or without a display.
// The chart screens and `varo --plot` both draw through here, so their pictures look alike.
//
// Text is in "Arial" where it is installed and in the metric-compatible "Liberation Sans"
// otherwise, at pixel sizes, so that a picture is laid out the same on every machine and in
// both formats. Widths and sizes of the model are in twips, a fifteenth of a pixel.
#pragma once

#include "charts/chart_export.hpp"
#include "charts/chart_model.hpp"

#include <QImage>
#include <QSize>
#include <memory>
#include <string>

class QApplication;
class QPainter;

QT_BEGIN_NAMESPACE
class QChart;
QT_END_NAMESPACE

namespace varo::gui {

// Makes "Arial" stand for Liberation Sans where Arial is not installed. Runs once.
void useChartFonts();

// A new Qt chart of the model; the caller owns it.
QChart* buildChart(const charts::ChartModel& model);

// Draws the model into a painter over a rectangle of `size` pixels.
void drawChart(const charts::ChartModel& model, QPainter& painter, QSize size);

// The model drawn into an image of `size` pixels on white.
QImage renderChartImage(const charts::ChartModel& model, QSize size);

// Saves the model as a PNG or SVG picture (by the path's extension) of `size` pixels. The
// picture is written beside the path and renamed into place, so the file appears whole or
// not at all. Failures are core::Failure naming the path.
void saveChartPicture(const charts::ChartModel& model, const std::string& path, QSize size);

// The command line's exporter: draws without a display, making an offscreen Qt application
// the first time it is asked for a picture when the process has none.
class QtChartExporter final : public charts::ChartExporter {
public:
    QtChartExporter();
    ~QtChartExporter() override;
    void save(const charts::ChartModel& chart, const std::string& path,
              charts::PictureSize size) override;

private:
    int argc_ = 1;
    char name_[5] = "varo";
    char* argv_[2] = {name_, nullptr};
    std::unique_ptr<QApplication> application_;
};

} // namespace varo::gui
