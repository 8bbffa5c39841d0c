#include "cli_test_support.hpp"

#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

using namespace varo::testing;

namespace {

std::string data(const std::string& name) {
    return std::string(VARO_TEST_DATA) + "/statistics/" + name;
}

// The column of a statistic as the results file holds it, read independently of the reader.
std::vector<double> columnOf(const std::string& path, const std::string& statistic) {
    std::istringstream text(readFile(path));
    std::string line;
    size_t column = 0;
    std::vector<double> values;
    while (std::getline(text, line)) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        std::vector<std::string> fields;
        std::stringstream split(line);
        for (std::string field; std::getline(split, field, ',');) {
            fields.push_back(field);
        }
        if (column == 0 && !fields.empty() && fields[0] == "Month") {
            for (size_t c = 1; c < fields.size(); ++c) {
                column = fields[c] == statistic ? c : column;
            }
        } else if (column != 0 && values.size() < 17) {
            values.push_back(std::stod(fields.at(column)));
        }
    }
    return values;
}

class CompareCommand : public ::testing::Test {
protected:
    TempDir dir;
    std::string first;
    std::string second;

    void SetUp() override {
        first = dir.path("first.txt");
        second = dir.path("second.txt");
        const std::vector<std::string> period = {"--observed", "--start", "01/01/1961", "--end",
                                                 "31/12/1964"};
        std::vector<std::string> a = {"stats",   data("observed.dat"), "-o", first,
                                      "--stats", "Mean,Sum,Maximum"};
        std::vector<std::string> b = {"stats",   data("observed.dat"), "-o",    second,
                                      "--stats", "Mean,Wet-days%",     "--set", "Thresh=1"};
        a.insert(a.end(), period.begin(), period.end());
        b.insert(b.end(), period.begin(), period.end());
        ASSERT_EQ(runVaro(dir, a).exitCode, 0);
        ASSERT_EQ(runVaro(dir, b).exitCode, 0);
    }
};

} // namespace

TEST_F(CompareCommand, JsonGivesTheSeventeenRowsOfEachFilesColumn) {
    const CliRun run = runVaro(dir, {"compare", first, second, "--stat", "Mean", "--json"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto document = nlohmann::json::parse(run.out);
    EXPECT_EQ(document["title"], "VARO Line Chart");
    EXPECT_EQ(document["rowHeading"], "Month");
    EXPECT_EQ(document["columns"],
              (std::vector<std::string>{"first.txt: Mean", "second.txt: Mean"}));
    ASSERT_EQ(document["rows"].size(), 17u);
    EXPECT_EQ(document["rows"][0]["label"], "January");
    EXPECT_EQ(document["rows"][12]["label"], "Winter");
    EXPECT_EQ(document["rows"][16]["label"], "Annual");
    const std::vector<double> firstMean = columnOf(first, "Mean");
    const std::vector<double> secondMean = columnOf(second, "Mean");
    ASSERT_EQ(firstMean.size(), 17u);
    for (size_t r = 0; r < 17; ++r) {
        EXPECT_DOUBLE_EQ(document["rows"][r]["values"][0].get<double>(), firstMean[r]) << r;
        EXPECT_DOUBLE_EQ(document["rows"][r]["values"][1].get<double>(), secondMean[r]) << r;
    }
    // A wet-day statistic makes every statistic one of wet days (above 1): a larger mean.
    EXPECT_GT(secondMean[16], firstMean[16]);
}

TEST_F(CompareCommand, WithoutJsonPrintsAPlainTable) {
    const CliRun run = runVaro(dir, {"compare", first, "--stat", "Sum", "--kind", "bar"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    std::istringstream lines(run.out);
    std::string title;
    std::string heading;
    std::getline(lines, title);
    std::getline(lines, heading);
    EXPECT_EQ(title, "VARO Bar Chart");
    EXPECT_EQ(heading.substr(0, 5), "Month");
    EXPECT_NE(heading.find("first.txt: Sum"), std::string::npos);
    EXPECT_NE(run.out.find("\nAnnual "), std::string::npos);
}

TEST_F(CompareCommand, RefusesWhatCannotBeCompared) {
    std::string truncated = readFile(first);
    truncated.resize(truncated.find("Summer"));
    const std::string cut = dir.write("cut.txt", truncated);
    const std::string none = dir.write("none.txt", "nothing to see\r\n");
    struct Case {
        std::vector<std::string> args;
        std::string message;
    };
    const std::vector<Case> cases = {
        {{"compare", first, second, "--stat", "Sum"},
         "Error Message: Statistic 'Sum' is not in file 2 (second.txt); its statistics are: "
         "Mean, Wet-days%.\n"},
        {{"compare", first, "--stat", "Median"},
         "Error Message: Statistic 'Median' is not in file 1 (first.txt); its statistics are: "
         "Mean, Maximum, Sum.\n"},
        {{"compare", first},
         "Error Message: You must select a statistic to plot from file 1.\nGive one with --stat "
         "NAME: Mean, Maximum, Sum.\n"},
        {{"compare", none, "--stat", "Mean"},
         "Error Message: No statistics to select in file 1.\n"},
        {{"compare", first, none, "--stat", "Mean"},
         "Error Message: File 2 (none.txt) holds no table of statistics.\n"},
        {{"compare", cut, "--stat", "Mean"},
         "ends on line 19: the table that starts on line 5 "
         "has only 14 of its 17 rows."},
        {{"compare", dir.path("absent.txt"), "--stat", "Mean"}, "absent.txt"},
        {{"compare", first, "--stat", "Mean", "--plot", dir.path("x.png")},
         "Error Message: --plot: this varo was built without the desktop program, whose "
         "renderer draws the charts; no picture can be made.\n"},
    };
    for (const Case& test : cases) {
        const CliRun run = runVaro(dir, test.args);
        EXPECT_EQ(run.exitCode, 2) << test.message;
        EXPECT_NE(run.err.find(test.message), std::string::npos) << run.err;
        EXPECT_TRUE(run.out.empty()) << run.out;
    }
    EXPECT_FALSE(fileExists(dir.path("x.png")));
}

TEST_F(CompareCommand, PlotHandsTheChartToTheExporter) {
    RecordingExporter exporter;
    const std::string picture = dir.path("compare.svg");
    const CliRun run = runWith(dir,
                               {"compare", first, second, "--stat", "Mean", "--kind", "bar",
                                "--plot", picture, "--plot-size", "640x480", "--quiet"},
                               &exporter);
    ASSERT_EQ(run.exitCode, 0) << run.err;
    ASSERT_EQ(exporter.charts.size(), 1u);
    const auto& chart = exporter.charts[0];
    EXPECT_EQ(chart.screen, varo::charts::ChartScreen::Result);
    EXPECT_EQ(chart.title, "VARO Bar Chart");
    ASSERT_EQ(chart.series.size(), 2u);
    EXPECT_EQ(chart.series[0].name, "first.txt: Mean");
    EXPECT_EQ(chart.series[1].name, "second.txt: Mean");
    EXPECT_EQ(chart.categories.size(), 17u);
    EXPECT_EQ(exporter.paths[0], picture);
    EXPECT_EQ(exporter.sizes[0], (varo::charts::PictureSize{640, 480}));

    const CliRun named =
        runWith(dir, {"compare", first, "--stat", "Mean", "--plot", picture}, &exporter);
    EXPECT_NE(named.err.find("Chart written: " + picture), std::string::npos) << named.err;
    EXPECT_EQ(exporter.sizes[1], (varo::charts::PictureSize{800, 600}));
}

TEST_F(CompareCommand, ABadPicturePathOrSizeIsRefusedBeforeAnythingRuns) {
    RecordingExporter exporter;
    struct Case {
        std::vector<std::string> plot;
        std::string message;
    };
    const std::vector<Case> cases = {
        {{"--plot", dir.path("chart.jpg")}, "the file name must end in .png or .svg."},
        {{"--plot", dir.path("missing/chart.png")}, "' does not exist."},
        {{"--plot", dir.path("chart.png"), "--plot-size", "20x20"},
         "--plot-size: A picture size is WIDTHxHEIGHT"},
    };
    for (const Case& test : cases) {
        std::vector<std::string> args = {"compare", first, "--stat", "Mean"};
        args.insert(args.end(), test.plot.begin(), test.plot.end());
        const CliRun run = runWith(dir, args, &exporter);
        EXPECT_EQ(run.exitCode, 2) << test.message;
        EXPECT_NE(run.err.find(test.message), std::string::npos) << run.err;
        EXPECT_TRUE(run.out.empty()) << "refused before the table is printed";
    }
    EXPECT_TRUE(exporter.charts.empty());
    EXPECT_FALSE(fileExists(dir.path("chart.png")));
}

TEST_F(CompareCommand, AFailedPictureIsARunTimeFailure) {
    RecordingExporter exporter;
    exporter.fail = true;
    const CliRun run = runWith(
        dir, {"compare", first, "--stat", "Mean", "--plot", dir.path("chart.png")}, &exporter);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.err.find("Cannot write the chart to"), std::string::npos) << run.err;
}

TEST_F(CompareCommand, AMissingValueIsNullInJson) {
    std::string text = readFile(first);
    const size_t april = text.find("April,");
    text.replace(april, text.find(',', april + 6) - april, "April,-999.000");
    const CliRun run =
        runVaro(dir, {"compare", dir.write("gap.txt", text), "--stat", "Mean", "--json"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto document = nlohmann::json::parse(run.out);
    EXPECT_TRUE(document["rows"][3]["values"][0].is_null());
    EXPECT_FALSE(document["rows"][4]["values"][0].is_null());
}
