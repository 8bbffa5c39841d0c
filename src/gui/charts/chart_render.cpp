#include "gui/charts/chart_render.hpp"

#include "charts/chart_scale.hpp"
#include "core/failure.hpp"

#include <QApplication>
#include <QBarSeries>
#include <QBarSet>
#include <QBuffer>
#include <QCategoryAxis>
#include <QChart>
#include <QFile>
#include <QFont>
#include <QFontDatabase>
#include <QGraphicsLayout>
#include <QGraphicsScene>
#include <QLegendMarker>
#include <QLineSeries>
#include <QPainter>
#include <QRegularExpression>
#include <QSet>
#include <QSvgGenerator>
#include <QValueAxis>
#include <cmath>

namespace varo::gui {

namespace {

constexpr double PixelsPerPoint = 96.0 / 72.0;
constexpr double TwipsPerPixel = 15.0; // at 96 dots per inch

QString qt(const std::string& text) {
    return QString::fromStdString(text);
}

// Chart and axis titles are rich text: the system's text is shown as it stands, blanks
// and angle brackets included.
QString titleText(const std::string& text) {
    return qt(text).toHtmlEscaped().replace("  ", "&nbsp; ");
}

QColor colourOf(const core::Rgb& rgb) {
    return QColor(rgb.red, rgb.green, rgb.blue);
}

// A width or size in twips as pixels (at least a hairline).
double pixels(int twips) {
    return std::max(0.1, twips / TwipsPerPixel);
}

QFont fontOf(const charts::ChartFont& font, double extraPoints = 0.0, bool bold = false) {
    QFont made(qt(font.family));
    made.setPixelSize(std::max(
        1, static_cast<int>(std::lround((font.pointSize + extraPoints) * PixelsPerPoint))));
    made.setBold(bold || font.bold);
    made.setItalic(font.italic);
    return made;
}

// Decimals that show every tick of a step exactly (at most six).
int decimalsFor(double step) {
    for (int decimals = 0; decimals < 6; ++decimals) {
        const double scaled = step * std::pow(10.0, decimals);
        if (std::abs(scaled - std::round(scaled)) < 1e-6 * std::max(1.0, scaled)) {
            return decimals;
        }
    }
    return 6;
}

void styleAxis(QAbstractAxis* axis, const charts::Axis& words, const charts::ChartFont& font) {
    axis->setTitleText(titleText(words.title));
    axis->setTitleFont(fontOf(font, 1.0, true));
    axis->setLabelsFont(fontOf(font));
    axis->setLabelsVisible(words.labels);
    axis->setGridLineVisible(words.ticks);
    axis->setLabelsColor(Qt::black);
    axis->setTitleBrush(Qt::black);
}

QValueAxis* valueAxis(const charts::Axis& words, const charts::ChartFont& font) {
    auto* axis = new QValueAxis();
    const charts::AxisScale scale = charts::drawnScale(words.scale);
    axis->setRange(scale.minimum, scale.maximum);
    axis->setTickCount(words.ticks ? scale.divisions + 1 : 2);
    axis->setMinorTickCount(0);
    const double step = (scale.maximum - scale.minimum) / scale.divisions;
    axis->setLabelFormat(QString("%.%1f").arg(decimalsFor(step)));
    styleAxis(axis, words, font);
    return axis;
}

// Labels must differ on a category axis: a repeated one gets trailing blanks.
QString uniqueLabel(QSet<QString>& used, QString label) {
    while (used.contains(label)) {
        label += ' ';
    }
    used.insert(label);
    return label;
}

// The categories along the bottom, every `gap`-th labelled (none for 0), the points of
// category i standing at x = i.
QCategoryAxis* categoryAxis(const charts::ChartModel& model, int gap) {
    auto* axis = new QCategoryAxis();
    const double count = static_cast<double>(model.categories.size());
    axis->setRange(-0.5, std::max(0.5, count - 0.5));
    axis->setStartValue(-0.5);
    axis->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);
    QSet<QString> used;
    qsizetype characters = 0;
    if (gap > 0 && model.xAxis.labels) {
        for (size_t i = 0; i < model.categories.size(); i += static_cast<size_t>(gap)) {
            if (!model.categories[i].empty()) {
                const QString label = uniqueLabel(used, qt(model.categories[i]));
                characters = std::max(characters, label.size());
                axis->append(label, static_cast<double>(i));
            }
        }
    }
    styleAxis(axis, model.xAxis, model.font);
    axis->setGridLineVisible(false);
    // Labels that would not fit side by side stand upright rather than be cut short.
    if (used.size() * characters > 60) {
        axis->setLabelsAngle(-90);
    }
    return axis;
}

void attach(QChart* chart, QAbstractSeries* series, QAbstractAxis* x, QAbstractAxis* y) {
    chart->addSeries(series);
    series->attachAxis(x);
    series->attachAxis(y);
}

void hideFromLegend(QChart* chart, QAbstractSeries* series) {
    for (QLegendMarker* marker : chart->legend()->markers(series)) {
        marker->setVisible(false);
    }
}

// A series as line pieces between missing values, with dots of `dotDiameter` pixels (none
// for 0); only the first piece is in the legend.
void addLine(QChart* chart, const charts::Series& series, QPen pen, QAbstractAxis* x,
             QAbstractAxis* y, double dotDiameter) {
    bool first = true;
    size_t i = 0;
    while (i < series.y.size()) {
        QList<QPointF> points;
        for (; i < series.y.size() && charts::hasValue(series.y[i]); ++i) {
            const double at = series.x.empty() ? static_cast<double>(i) : series.x[i];
            points.append(QPointF(at, series.y[i]));
        }
        ++i;
        if (points.isEmpty() && !first) {
            continue;
        }
        auto* line = new QLineSeries();
        line->setName(qt(series.name));
        line->setPen(pen);
        line->setColor(pen.color());
        if (dotDiameter > 0.0) {
            line->setPointsVisible(true);
            line->setMarkerSize(dotDiameter / 2.0); // a line series draws its points by radius
        }
        line->replace(points);
        attach(chart, line, x, y);
        if (!first) {
            hideFromLegend(chart, line);
        }
        first = false;
    }
}

void addBars(QChart* chart, const charts::ChartModel& model, QAbstractAxis* x, QAbstractAxis* y) {
    auto* bars = new QBarSeries();
    bars->setBarWidth(model.screen == charts::ChartScreen::Histogram ? 1.0 : 0.8);
    for (const charts::Series& series : model.series) {
        auto* set = new QBarSet(qt(series.name));
        set->setColor(colourOf(series.colour));
        set->setBorderColor(colourOf(series.colour).darker(130));
        for (const double value : series.y) {
            set->append(charts::hasValue(value) ? value : 0.0);
        }
        bars->append(set);
    }
    attach(chart, bars, x, y);
}

void addCategoryLines(QChart* chart, const charts::ChartModel& model, QAbstractAxis* x,
                      QAbstractAxis* y) {
    const bool timeSeries = model.kind == charts::ChartKind::TimeSeries;
    const bool dots = timeSeries && model.timeSeriesKind != charts::TimeSeriesKind::Raw;
    if (timeSeries && model.timeSeriesKind == charts::TimeSeriesKind::Spi) {
        charts::Series zero{"", {128, 128, 128}, {-0.5, model.categories.size() - 0.5}, {0.0, 0.0}};
        addLine(chart, zero, QPen(Qt::gray, 1.0), x, y, 0.0);
        hideFromLegend(chart, chart->series().back());
    }
    for (const charts::Series& series : model.series) {
        const double width = timeSeries ? pixels(series.penWidth) : 2.0;
        addLine(chart, series, QPen(colourOf(series.colour), width), x, y, dots ? 6.0 : 0.0);
    }
}

// Points as the dots of a series without a line: one item draws them all, where a scatter
// series makes an item for each point (ten times slower at 11,000 points).
void addPoints(QChart* chart, const charts::ChartModel& model, QAbstractAxis* x, QAbstractAxis* y) {
    constexpr int DotDiameter = 5;
    for (const charts::Series& series : model.series) {
        auto* points = new QLineSeries();
        points->setName(qt(series.name));
        QPen none(Qt::NoPen); // the dots take the colour, there is no line
        none.setColor(colourOf(series.colour));
        points->setPen(none);
        points->setPointsVisible(true);
        points->setMarkerSize(DotDiameter / 2.0);
        QList<QPointF> kept;
        kept.reserve(static_cast<qsizetype>(series.y.size()));
        for (size_t i = 0; i < series.y.size() && i < series.x.size(); ++i) {
            if (charts::hasValue(series.x[i]) && charts::hasValue(series.y[i])) {
                kept.append(QPointF(series.x[i], series.y[i]));
            }
        }
        points->replace(kept);
        attach(chart, points, x, y);
        for (QLegendMarker* marker : chart->legend()->markers(points)) {
            marker->setBrush(colourOf(series.colour));
        }
    }
}

void addFrequency(QChart* chart, const charts::ChartModel& model, QAbstractAxis* x,
                  QAbstractAxis* y) {
    for (const charts::Series& series : model.series) {
        QPen pen(colourOf(series.colour), pixels(model.lineSize));
        if (series.band) {
            pen.setStyle(Qt::DashLine);
        }
        addLine(chart, series, pen, x, y, series.band ? 0.0 : pixels(model.dotSize));
    }
}

void addSeries(QChart* chart, const charts::ChartModel& model) {
    QAbstractAxis* x = model.onCategories()
                           ? static_cast<QAbstractAxis*>(categoryAxis(model, model.xLabelGap))
                           : valueAxis(model.xAxis, model.font);
    QAbstractAxis* y = valueAxis(model.yAxis, model.font);
    chart->addAxis(x, Qt::AlignBottom);
    chart->addAxis(y, Qt::AlignLeft);
    switch (model.kind) {
    case charts::ChartKind::Bars:
        addBars(chart, model, x, y);
        return;
    case charts::ChartKind::Lines:
    case charts::ChartKind::TimeSeries:
        addCategoryLines(chart, model, x, y);
        return;
    case charts::ChartKind::Points:
        addPoints(chart, model, x, y);
        return;
    case charts::ChartKind::Frequency:
        addFrequency(chart, model, x, y);
        return;
    }
}

} // namespace

void useChartFonts() {
    static const bool substituted = [] {
        if (!QFontDatabase::hasFamily("Arial")) {
            QFont::insertSubstitution("Arial", "Liberation Sans");
        }
        return true;
    }();
    (void)substituted;
}

QChart* buildChart(const charts::ChartModel& model) {
    useChartFonts();
    auto* chart = new QChart();
    chart->setAnimationOptions(QChart::NoAnimation);
    chart->setTheme(QChart::ChartThemeLight);
    chart->setBackgroundRoundness(0);
    chart->setDropShadowEnabled(false);
    chart->setBackgroundBrush(Qt::white);
    chart->setTitle(titleText(model.title));
    chart->setTitleFont(fontOf(model.font, 3.0, true));
    chart->setTitleBrush(Qt::black);
    chart->legend()->setFont(fontOf(model.font));
    chart->legend()->setAlignment(Qt::AlignBottom);
    chart->legend()->setLabelColor(Qt::black);
    addSeries(chart, model);
    chart->legend()->setVisible(model.legendVisible && !model.series.empty());
    return chart;
}

void drawChart(const charts::ChartModel& model, QPainter& painter, QSize size) {
    QGraphicsScene scene;
    QChart* chart = buildChart(model);
    scene.addItem(chart);
    chart->setGeometry(QRectF(QPointF(0, 0), QSizeF(size)));
    // The chart lays out its title, axes and legend on the layout events it posts.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    chart->layout()->activate();
    scene.setSceneRect(QRectF(QPointF(0, 0), QSizeF(size)));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    scene.render(&painter, QRectF(QPointF(0, 0), QSizeF(size)), scene.sceneRect());
}

QImage renderChartImage(const charts::ChartModel& model, QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    drawChart(model, painter, size);
    painter.end();
    return image;
}

namespace {

bool writePng(const charts::ChartModel& model, const QString& path, QSize size) {
    return renderChartImage(model, size).save(path, "PNG");
}

// The generator gives the picture's size in millimetres; a picture asked for in pixels
// states its size in pixels.
QByteArray withPixelSize(QByteArray svg, QSize size) {
    static const QRegularExpression rootSize(R"(<svg width="[^"]*" height="[^"]*")");
    const QString root =
        QString(R"(<svg width="%1" height="%2")").arg(size.width()).arg(size.height());
    return QString::fromUtf8(svg).replace(rootSize, root).toUtf8();
}

bool writeSvg(const charts::ChartModel& model, const QString& path, QSize size) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setSize(size);
    generator.setViewBox(QRect(QPoint(0, 0), size));
    generator.setResolution(96);
    generator.setTitle(qt(model.title));
    QPainter painter;
    if (!painter.begin(&generator)) {
        return false;
    }
    painter.fillRect(QRect(QPoint(0, 0), size), Qt::white);
    drawChart(model, painter, size);
    if (!painter.end()) {
        return false;
    }
    QFile file(path);
    const QByteArray svg = withPixelSize(buffer.data(), size);
    return file.open(QIODevice::WriteOnly) && file.write(svg) == svg.size() && file.flush();
}

} // namespace

void saveChartPicture(const charts::ChartModel& model, const std::string& path, QSize size) {
    const auto format = charts::pictureFormatOf(path);
    if (const auto problem = charts::checkPicturePath(path); problem || !format) {
        throw core::Failure(core::failure::PathNotFound, problem.value_or(path));
    }
    const std::string temporary = charts::temporaryPicturePath(path);
    const bool written = *format == charts::PictureFormat::Png
                             ? writePng(model, qt(temporary), size)
                             : writeSvg(model, qt(temporary), size);
    if (!written) {
        charts::discardPicture(temporary);
        throw core::Failure(core::failure::PathAccessError,
                            "Cannot write the chart to '" + path + "'.");
    }
    charts::commitPicture(temporary, path);
}

namespace {

QtMessageHandler previousMessageHandler = nullptr;

// Without XDG_RUNTIME_DIR Qt warns that it made a runtime folder of its own; offscreen drawing
// needs none, and a command's user should not read the warning. Every other message passes.
void withoutRuntimeFolderWarning(QtMsgType type, const QMessageLogContext& context,
                                 const QString& message) {
    if (message.startsWith(QStringLiteral("QStandardPaths: XDG_RUNTIME_DIR not set"))) {
        return;
    }
    previousMessageHandler(type, context, message);
}

} // namespace

QtChartExporter::QtChartExporter() = default;
QtChartExporter::~QtChartExporter() = default;

void QtChartExporter::save(const charts::ChartModel& chart, const std::string& path,
                           charts::PictureSize size) {
    if (QCoreApplication::instance() == nullptr) {
        // Pictures need no display: the command line always draws offscreen.
        qputenv("QT_QPA_PLATFORM", "offscreen");
        previousMessageHandler = qInstallMessageHandler(withoutRuntimeFolderWarning);
        application_ = std::make_unique<QApplication>(argc_, argv_);
    }
    saveChartPicture(chart, path, QSize(size.width, size.height));
}

} // namespace varo::gui
