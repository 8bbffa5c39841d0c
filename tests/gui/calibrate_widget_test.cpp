#include "gui_test_support.hpp"

#include "gui/calibrate_widget.hpp"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTextEdit>

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
    auto* list = find<QListWidget>("File2");
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
    const QString page = results->findChild<QTextEdit*>("ResultsPage")->toPlainText();
    EXPECT_TRUE(page.contains("Unconditional Statistics"));
    EXPECT_TRUE(page.contains("Chow"));
    // The coefficients follow, one row for the year, as the parameter file holds them.
    const QString coefficients = page.mid(page.indexOf("Model Coefficients"));
    EXPECT_TRUE(coefficients.contains("Constant")) << coefficients.toStdString();
    EXPECT_TRUE(coefficients.contains("mslp.dat")) << coefficients.toStdString();
    const std::string parRow = golden.substr(golden.find("\r\n", golden.find("shum.dat")) + 2, 5);
    EXPECT_TRUE(coefficients.contains("Annual\n" + QString::fromStdString(parRow)))
        << coefficients.toStdString() << " / " << parRow;

    dialogs.pickedFiles.push_back(dir.path("REPORT.TXT"));
    QTest::mouseClick(results->findChild<QPushButton*>("menuSave"), Qt::LeftButton);
    const std::string saved = varo::testing::readFile(dir.path("REPORT.TXT"));
    EXPECT_EQ(saved.rfind("Predictand: rain.dat\r\nPredictors: mslp.dat\r\n", 0), 0u) << saved;
    EXPECT_NE(saved.find("\r\nModel Coefficients\r\nPeriod  Constant  mslp.dat  shum.dat\r\n"),
              std::string::npos)
        << saved;
}

TEST_F(GuiFixture, CalibrateResidualPlotChoiceIsShownDisabledUntilChartsCome) {
    window->goTo(screens::ScreenKey::Calibrate);
    for (const char* name : {"GraphType0", "GraphType1", "GraphType2", "HistogramCatsText"}) {
        auto* control = find<QWidget>(name);
        EXPECT_FALSE(control->isEnabled()) << name;
        EXPECT_TRUE(control->toolTip().contains("later version")) << name;
    }
    EXPECT_TRUE(find<QRadioButton>("GraphType0")->isChecked());
}
