#include "charts/chart_builders.hpp"
#include "charts/sample_charts.hpp"
#include "cli/cli.hpp"
#include "core/failure.hpp"
#include "gui/charts/chart_render.hpp"
#include "gui/charts/chart_window.hpp"
#include "support/scripted_dialogs.hpp"
#include "support/temp_dir.hpp"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QSvgRenderer>
#include <gtest/gtest.h>
#include <sstream>

using namespace varo;
using varo::testing::TempDir;

namespace {

core::ProgramState startedState() {
    core::ProgramState state;
    core::initialiseState(state);
    return state;
}

bool hasColour(const QImage& image, const QColor& colour) {
    const QImage plain = image.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < plain.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(plain.constScanLine(y));
        for (int x = 0; x < plain.width(); ++x) {
            if (line[x] == colour.rgb()) {
                return true;
            }
        }
    }
    return false;
}

QStringList filesIn(const TempDir& dir) {
    return QDir(QString::fromStdString(dir.folder()))
        .entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot);
}

} // namespace

TEST(ChartExport, PngAndSvgOfEveryChartParseAndHaveTheRequestedSize) {
    TempDir dir;
    const core::ProgramState state = startedState();
    for (const charts::ChartScreen screen : charts::allChartScreens()) {
        const charts::ChartModel chart = charts::sampleChart(screen, state);
        const std::string name(charts::screenName(screen));
        const std::string png = dir.path(name + ".png");
        const std::string svg = dir.path(name + ".SVG");
        gui::saveChartPicture(chart, png, QSize(640, 480));
        gui::saveChartPicture(chart, svg, QSize(900, 500));

        QImage image;
        ASSERT_TRUE(image.load(QString::fromStdString(png), "PNG")) << name;
        EXPECT_EQ(image.size(), QSize(640, 480)) << name;

        QSvgRenderer renderer(QString::fromStdString(svg));
        ASSERT_TRUE(renderer.isValid()) << name;
        EXPECT_EQ(renderer.defaultSize(), QSize(900, 500)) << name;
        EXPECT_EQ(renderer.viewBox(), QRect(0, 0, 900, 500)) << name;
        const std::string text = varo::testing::readFile(svg);
        EXPECT_NE(text.find("<title>"), std::string::npos) << name;
    }
    EXPECT_EQ(filesIn(dir).size(), 14)
        << filesIn(dir).join(", ").toStdString() << ": no temporary file is left";
}

TEST(ChartExport, SeriesAreDrawnInTheColoursOfTheProgramState) {
    core::ProgramState state = startedState();
    const QImage before = gui::renderChartImage(
        charts::sampleChart(charts::ChartScreen::Result, state), QSize(600, 400));
    EXPECT_TRUE(hasColour(before, QColor(128, 0, 0)));
    state.barColours[0] = core::Rgb{20, 40, 220};
    const QImage after = gui::renderChartImage(
        charts::sampleChart(charts::ChartScreen::Result, state), QSize(600, 400));
    EXPECT_TRUE(hasColour(after, QColor(20, 40, 220)));
    EXPECT_FALSE(hasColour(after, QColor(128, 0, 0)));
}

TEST(ChartExport, ARefusedPathFailsAndLeavesNothing) {
    TempDir dir;
    const core::ProgramState state = startedState();
    const charts::ChartModel chart = charts::sampleChart(charts::ChartScreen::Histogram, state);
    QDir(QString::fromStdString(dir.folder())).mkdir("folder.png");
    for (const std::string& path :
         {dir.path("missing/chart.png"), dir.path("chart.bmp"), dir.path("folder.png")}) {
        EXPECT_THROW(gui::saveChartPicture(chart, path, QSize(300, 200)), core::Failure) << path;
    }
    EXPECT_TRUE(filesIn(dir).isEmpty()) << filesIn(dir).join(", ").toStdString();
}

TEST(ChartExport, AnOlderPictureIsReplacedWhole) {
    TempDir dir;
    const core::ProgramState state = startedState();
    const std::string path = dir.write("chart.png", "not a picture");
    gui::saveChartPicture(charts::sampleChart(charts::ChartScreen::Pdf, state), path,
                          QSize(200, 150));
    QImage image;
    ASSERT_TRUE(image.load(QString::fromStdString(path), "PNG"));
    EXPECT_EQ(image.size(), QSize(200, 150));
}

TEST(ChartExport, TheScreensPictureIsTheOneTheCommandLineMakes) {
    TempDir dir;
    core::ProgramState state = startedState();
    varo::testing::ScriptedDialogs dialogs;
    const charts::ChartModel chart = charts::sampleChart(charts::ChartScreen::TimeSeries, state);
    gui::ChartWindow window(state, dialogs, chart, nullptr);
    window.show();
    const QImage shown = window.picture();
    ASSERT_FALSE(shown.isNull());
    gui::QtChartExporter exporter;
    const std::string path = dir.path("exported.png");
    exporter.save(chart, path,
                  charts::PictureSize{window.pictureSize().width(), window.pictureSize().height()});
    QImage exported;
    ASSERT_TRUE(exported.load(QString::fromStdString(path), "PNG"));
    EXPECT_EQ(exported.convertToFormat(QImage::Format_RGB32),
              shown.convertToFormat(QImage::Format_RGB32));
}

TEST(ChartExport, VaroComparePlotsThroughTheRenderer) {
    TempDir dir;
    std::string text = "Month,Mean,Sum\r\n";
    for (const char* row :
         {"January", "February", "March", "April", "May", "June", "July", "August", "September",
          "October", "November", "December", "Winter", "Spring", "Summer", "Autumn", "Annual"}) {
        text += std::string(row) + ",1.500,40.000,\r\n";
    }
    const std::string results = dir.write("results.txt", text);
    gui::QtChartExporter exporter;
    std::ostringstream out;
    std::ostringstream err;
    const std::string picture = dir.path("compare.png");
    const int status = cli::runCli({"--settings", dir.path("VARO.INI"), "compare", results,
                                    "--stat", "Sum", "--plot", picture, "--plot-size", "500x320"},
                                   out, err, &exporter);
    ASSERT_EQ(status, 0) << err.str();
    QImage image;
    ASSERT_TRUE(image.load(QString::fromStdString(picture), "PNG"));
    EXPECT_EQ(image.size(), QSize(500, 320));
    EXPECT_TRUE(hasColour(image, QColor(128, 0, 0))) << "the first series' bar colour";
}
