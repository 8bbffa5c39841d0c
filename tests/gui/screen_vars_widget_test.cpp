#include "gui_test_support.hpp"

#include "gui/charts/chart_window.hpp"
#include "gui/screen_vars_widget.hpp"

#include <QChart>
#include <QChartView>
#include <QPointer>
#include <QXYSeries>

#include <QComboBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTreeWidget>

using namespace varo;
using varo::testing::GuiFixture;

namespace {
const std::string Data = std::string(VARO_TEST_DATA) + "/screening/";
}

TEST_F(GuiFixture, ScreeningScreenListsPredictorsAndShowsTheReports) {
    window->showHome();
    window->goTo(screens::ScreenKey::Screen);
    dialogs.pickedFiles.push_back(Data + "predictand.dat");
    click("PredtandButton");
    EXPECT_EQ(find<QLabel>("PtandText")->text(), "predictand.dat");
    dialogs.pickedFiles.push_back(Data);
    click("Dir2");
    auto* list = find<QTreeWidget>("File2");
    ASSERT_EQ(list->topLevelItemCount(), 6); // make_reference.py, three predictors, ...
    EXPECT_EQ(list->topLevelItem(1)->text(0), "p1_mslp.dat");
    EXPECT_EQ(list->topLevelItem(1)->text(1), "Mean sea level pressure");
    list->topLevelItem(1)->setSelected(true);
    list->topLevelItem(3)->setSelected(true);
    EXPECT_EQ(find<QLabel>("NoOfFiles")->text(), "2 selected");
    type("FEdate", "31/12/1963");
    find<QComboBox>("DatesCombo")->setCurrentIndex(2);
    emit find<QComboBox>("DatesCombo")->activated(2);
    click("tb1Correlation");
    const QString report = find<QPlainTextEdit>("ResultsText")->toPlainText();
    EXPECT_TRUE(report.contains("Analysis Period: 01/01/1961 - 31/12/1963 (Spring)"))
        << report.toStdString();
    EXPECT_TRUE(report.contains("PARTIAL CORRELATIONS WITH predictand.dat"));

    click("AutoRegressionTick");
    click("ParmOpt0");
    EXPECT_EQ(dialogs.messages.back().text,
              "Can only apply autoregression analysis to unconditional process.");
    click("ParmOpt1");
    click("tb1Variance");
    auto* results = find<QPlainTextEdit>("ResultsText");
    EXPECT_TRUE(results->toPlainText().startsWith("   RESULTS: EXPLAINED VARIANCE"));
    // The best predictor of January stands out in bold.
    const auto& record = static_cast<gui::ScreenVarsWidget*>(window->currentScreen())->record();
    ASSERT_FALSE(record.report->highlights.empty());
    const auto mark = record.report->highlights.front();
    const QTextBlock block = results->document()->findBlockByNumber(static_cast<int>(mark.line));
    QTextCursor cursor(block);
    cursor.setPosition(block.position() + static_cast<int>(mark.column) + 1);
    EXPECT_EQ(cursor.charFormat().fontWeight(), QFont::Bold);
}

// The Save key writes the report as it stands, best predictors marked '*', lines ended by
// CR LF; before a report it says there is none, and a file it cannot write is left absent.
TEST_F(GuiFixture, ScreeningReportSavesAsText) {
    window->showHome();
    window->goTo(screens::ScreenKey::Screen);
    click("tb1Save");
    EXPECT_EQ(dialogs.lastText(),
              "There is no report to save yet: run Correlation or Explained Variance first.");
    EXPECT_TRUE(dialogs.startFolders.empty());

    dialogs.pickedFiles = {Data + "predictand.dat", Data};
    click("PredtandButton");
    click("Dir2");
    auto* list = find<QTreeWidget>("File2");
    list->topLevelItem(1)->setSelected(true);
    list->topLevelItem(3)->setSelected(true);
    type("FEdate", "31/12/1963");
    click("tb1Variance");
    const auto& record = static_cast<gui::ScreenVarsWidget*>(window->currentScreen())->record();
    ASSERT_TRUE(record.report);
    std::string expected;
    for (const std::string& line : record.report->lines) {
        expected += line + "\r\n";
    }
    EXPECT_NE(expected.find('*'), std::string::npos);

    dialogs.pickedFiles = {dir.path("report.txt")};
    click("tb1Save");
    EXPECT_EQ(varo::testing::readFile(dir.path("report.txt")), expected);
    EXPECT_EQ(find<QLabel>("SavedReport")->text(),
              QString::fromStdString("Report saved to " + dir.path("report.txt")));

    const size_t shown = dialogs.messages.size();
    dialogs.pickedFiles = {dir.path("no-such-folder/report.txt")};
    click("tb1Save");
    ASSERT_EQ(dialogs.messages.size(), shown + 1);
    EXPECT_EQ(dialogs.messages.back().title, "Error Message");
    EXPECT_FALSE(varo::testing::fileExists(dir.path("no-such-folder/report.txt")));
}

// The scatter key opens the scatter chart screen: the predictor across, the predictand up,
// the missing days in the title (1961 to 1963: 6 of 1,095 days, counted apart in Python).
// A run with no point opens it empty, in place of the chart before.
TEST_F(GuiFixture, ScatterOpensTheScatterChartScreenEvenWithoutPoints) {
    window->showHome();
    window->goTo(screens::ScreenKey::Screen);
    dialogs.pickedFiles = {Data + "predictand.dat", Data};
    click("PredtandButton");
    click("Dir2");
    find<QTreeWidget>("File2")->topLevelItem(1)->setSelected(true); // p1_mslp.dat
    type("FEdate", "31/12/1963");
    click("tb1Scatter");
    auto* screen = static_cast<gui::ScreenVarsWidget*>(window->currentScreen());
    QPointer<gui::ChartWindow> chart = screen->scatterChart();
    ASSERT_NE(chart, nullptr) << dialogs.lastText();
    EXPECT_EQ(chart->objectName(), "ScatterChartFrm");
    EXPECT_EQ(chart->windowTitle(), "6 missing value(s): predictand.dat");
    const auto pointsDrawn = [](gui::ChartWindow* shown) {
        auto* view = shown->findChild<QChartView*>("Chart");
        const auto* points = qobject_cast<QXYSeries*>(view->chart()->series().at(0));
        return points == nullptr ? -1 : points->count();
    };
    EXPECT_EQ(pointsDrawn(chart), 1089);
    const auto axes = chart->findChild<QChartView*>("Chart")->chart()->axes();
    ASSERT_EQ(axes.size(), 2);
    EXPECT_EQ(axes[0]->titleText(), "p1_mslp.dat");
    EXPECT_EQ(axes[1]->titleText(), "predictand.dat");

    state.thresh = 1000.0f;
    click("ParmOpt0"); // conditional: no day is an event
    click("tb1Scatter");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(chart.isNull()) << "the chart before is closed";
    ASSERT_NE(screen->scatterChart(), nullptr);
    EXPECT_EQ(pointsDrawn(screen->scatterChart()), 0);
    EXPECT_EQ(screen->scatterChart()->windowTitle(), "6 missing value(s): predictand.dat");
}
