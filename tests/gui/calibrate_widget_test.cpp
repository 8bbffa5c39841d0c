#include "gui_test_support.hpp"

#include "gui/calibrate_widget.hpp"
#include "gui/charts/chart_window.hpp"
#include "gui/results_table_view.hpp"

#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QChartView>

#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QTreeWidget>

using namespace varo;
using varo::testing::GuiFixture;

namespace {

const std::string Data = std::string(VARO_TEST_DATA) + "/calibration/driver";

} // namespace

TEST_F(GuiFixture, CalibrateScreenFitsAModelAndShowsTheReport) {
    state.globalSDate = {1, 1, 1961};
    state.globalEDate = {31, 12, 1966};
    window->goTo(screens::ScreenKey::Calibrate);
    EXPECT_EQ(find<QLabel>("NoOfDays")->text(), "2191");

    dialogs.pickedFiles.push_back(Data + "/rain.dat");
    click("PredictandButton");
    EXPECT_EQ(find<QLabel>("PtandText")->text(), "rain.dat");
    dialogs.pickedFiles.push_back(Data);
    click("Dir2");
    auto* list = find<QTreeWidget>("File2");
    for (const char* name : {"shum.dat", "mslp.dat"}) {
        const auto items = list->findItems(name, Qt::MatchExactly);
        ASSERT_EQ(items.size(), 1);
        items[0]->setSelected(true);
    }
    EXPECT_EQ(find<QLabel>("NoOfFiles")->text(), "2 selected");
    dialogs.pickedFiles.push_back(dir.path("MODEL.PAR"));
    click("PARFileButton");

    // A refused date comes back as it was; a good one changes the days.
    type("FSDate", "31/12/1960");
    EXPECT_EQ(dialogs.lastText(), "Fit start date must be later than record start date.");
    EXPECT_EQ(text("FSDate"), "01/01/1961");
    type("FSDate", "01/01/1962");
    EXPECT_EQ(find<QLabel>("NoOfDays")->text(), "1826");
    click("ModelType2");
    click("IncludeChow");

    click("tb1Calibrate");
    ASSERT_TRUE(varo::testing::fileExists(dir.path("MODEL.PAR"))) << dialogs.lastText();
    std::string golden = varo::testing::readFile(Data + "/annual_unconditional.PAR");
    golden.replace(golden.rfind("DATA/"), 4, Data);
    EXPECT_EQ(varo::testing::readFile(dir.path("MODEL.PAR")), golden);

    auto* results = window->findChild<gui::CalibrateResultsDialog*>("CalibResultsFrm");
    ASSERT_NE(results, nullptr);
    // A tab for the statistics, with the Chow column, then one for the coefficients: one row
    // for the year, as the parameter file holds them.
    gui::ResultsTabs* tabs = results->tables();
    ASSERT_EQ(tabs->count(), 2);
    EXPECT_EQ(tabs->tabText(0), "Unconditional Statistics");
    EXPECT_EQ(tabs->view(0)->grid()->horizontalHeaderItem(4)->text(), "Chow");
    EXPECT_EQ(tabs->tabText(1), "Model Coefficients");
    const QTableWidget* coefficients = tabs->view(1)->grid();
    EXPECT_EQ(coefficients->horizontalHeaderItem(2)->text(), "mslp.dat");
    ASSERT_EQ(coefficients->rowCount(), 1);
    EXPECT_EQ(coefficients->item(0, 0)->text(), "Annual");
    const std::string parRow = golden.substr(golden.find("\r\n", golden.find("shum.dat")) + 2, 5);
    EXPECT_TRUE(coefficients->item(0, 1)->text().startsWith(QString::fromStdString(parRow)))
        << coefficients->item(0, 1)->text().toStdString() << " / " << parRow;

    dialogs.pickedFiles.push_back(dir.path("REPORT.TXT"));
    QTest::mouseClick(results->findChild<QPushButton*>("menuSave"), Qt::LeftButton);
    const std::string saved = varo::testing::readFile(dir.path("REPORT.TXT"));
    EXPECT_EQ(saved.rfind("Predictand: rain.dat\r\nPredictors: mslp.dat\r\n", 0), 0u) << saved;
    EXPECT_NE(saved.find("\r\nModel Coefficients\r\nPeriod  Constant  mslp.dat  shum.dat\r\n"),
              std::string::npos)
        << saved;
}

// The histogram choice opens the histogram screen over the report with the bars asked for;
// a later run without a plot closes it.
TEST_F(GuiFixture, CalibrationWithTheHistogramChoiceOpensTheHistogramScreen) {
    state.globalSDate = {1, 1, 1961};
    state.globalEDate = {31, 12, 1966};
    window->goTo(screens::ScreenKey::Calibrate);
    dialogs.pickedFiles = {Data + "/rain.dat", Data, dir.path("MODEL.PAR")};
    click("PredictandButton");
    click("Dir2");
    find<QTreeWidget>("File2")->findItems("mslp.dat", Qt::MatchExactly).at(0)->setSelected(true);
    click("PARFileButton");
    click("GraphType2");
    type("HistogramCatsText", "3");
    EXPECT_EQ(dialogs.lastText(),
              "Histogram catgeories cannot be less than 5 or greater than 100.");
    EXPECT_EQ(text("HistogramCatsText"), "20");
    type("HistogramCatsText", "12");
    click("tb1Calibrate");

    auto* screen = static_cast<gui::CalibrateWidget*>(window->currentScreen());
    ASSERT_NE(screen->resultsDialog(), nullptr) << dialogs.lastText();
    gui::ChartWindow* chart = screen->residualChart();
    ASSERT_NE(chart, nullptr);
    EXPECT_EQ(chart->objectName(), "HistogramFrm");
    EXPECT_EQ(chart->windowTitle(), "VARO Residual Histogram");
    auto* view = chart->findChild<QChartView*>("Chart");
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->chart()->title(), "VARO Residual Histogram");
    ASSERT_EQ(view->chart()->series().size(), 1);
    auto* bars = qobject_cast<QBarSeries*>(view->chart()->series().at(0));
    ASSERT_NE(bars, nullptr);
    ASSERT_EQ(bars->barSets().size(), 1);
    EXPECT_EQ(bars->barSets().at(0)->count(), 12);

    click("GraphType0");
    click("tb1Calibrate");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(screen->residualChart(), nullptr);
    EXPECT_EQ(window->findChild<gui::ChartWindow*>(), nullptr);
}
