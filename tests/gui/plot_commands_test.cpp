// The residual and scatter plots of the command line drawn by the real renderer: a picture
// of the requested size in the format its name asks for.
#include "cli/cli.hpp"
#include "gui/charts/chart_render.hpp"
#include "support/temp_dir.hpp"

#include <QImage>
#include <QSvgRenderer>
#include <gtest/gtest.h>
#include <sstream>

using namespace varo;
using varo::testing::TempDir;

namespace {

const std::string Data = std::string(VARO_TEST_DATA);

int runWithRenderer(const TempDir& dir, std::vector<std::string> args, std::string& err) {
    args.insert(args.begin(), {"--settings", dir.path("VARO.INI"), "--quiet"});
    gui::QtChartExporter exporter;
    std::ostringstream out;
    std::ostringstream errors;
    const int status = cli::runCli(args, out, errors, &exporter);
    err = errors.str();
    return status;
}

} // namespace

TEST(PlotCommands, ScatterAndResidualPicturesHaveTheRequestedSize) {
    TempDir dir;
    const std::string calibration = Data + "/calibration/driver/";
    const std::string screening = Data + "/screening/";
    struct Case {
        std::vector<std::string> args;
        std::string picture;
        QSize size;
    };
    const std::vector<Case> cases = {
        {{"screen", "scatter", screening + "predictand.dat", screening + "p1_mslp.dat", "--end",
          "31/12/1963"},
         "scatter.svg",
         {640, 480}},
        {{"--set", "GlobalEDate=31/12/1966", "calibrate", calibration + "rain.dat",
          calibration + "mslp.dat", "-o", dir.path("MODEL.PAR"), "--graph", "histogram"},
         "histogram.png",
         {500, 320}},
        {{"--set", "GlobalEDate=31/12/1966", "calibrate", calibration + "rain.dat",
          calibration + "mslp.dat", "-o", dir.path("MODEL.PAR"), "--process", "conditional"},
         "residuals.SVG",
         {1000, 150}},
    };
    for (const Case& test : cases) {
        const std::string path = dir.path(test.picture);
        std::vector<std::string> args = test.args;
        args.insert(args.end(),
                    {"--plot", path, "--plot-size",
                     std::to_string(test.size.width()) + "x" + std::to_string(test.size.height())});
        std::string err;
        ASSERT_EQ(runWithRenderer(dir, args, err), 0) << err;
        const QString file = QString::fromStdString(path);
        if (test.picture.ends_with(".png")) {
            QImage image;
            ASSERT_TRUE(image.load(file, "PNG")) << test.picture;
            EXPECT_EQ(image.size(), test.size) << test.picture;
        } else {
            QSvgRenderer svg(file);
            ASSERT_TRUE(svg.isValid()) << test.picture;
            EXPECT_EQ(svg.defaultSize(), test.size) << test.picture;
        }
    }
}
