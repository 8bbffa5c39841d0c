#include "gui_test_support.hpp"

#include "charts/chart_builders.hpp"
#include "gui/charts/chart_settings_dialog.hpp"
#include "gui/charts/chart_window.hpp"
#include "gui/compare_widget.hpp"

#include <QAction>
#include <QClipboard>
#include <QLabel>
#include <QListWidget>
#include <QPointer>

using namespace varo;
using varo::testing::GuiFixture;

namespace {

class ChartScreenFixture : public GuiFixture {
protected:
    gui::ChartWindow* open(charts::ChartModel chart) {
        window->showHome();
        return gui::openChartScreen(state, dialogs, std::move(chart), window.get());
    }
    charts::ChartModel compareChart() {
        return charts::resultChart(
            true, {"January", "February", "Annual"},
            {{"a.txt: Mean", {1.5, 2.0, 1.75}}, {"b.txt: Mean", {1.0, 2.5, 1.5}}}, state);
    }
    void trigger(const QString& name) { find<QAction>(name)->trigger(); }
    std::string resultsFile(const std::string& name, const std::string& statistics) {
        std::string text = "SUMMARY STATISTICS FOR: x.dat\r\nMonth," + statistics + "\r\n";
        for (const char* row : {"January", "February", "March", "April", "May", "June", "July",
                                "August", "September", "October", "November", "December", "Winter",
                                "Spring", "Summer", "Autumn", "Annual"}) {
            text += std::string(row) + ",2.000,30.000,\r\n";
        }
        return dir.write(name, text);
    }
};

} // namespace

TEST_F(ChartScreenFixture, ATitleAndAColourChangedInSettingsAndResetAll) {
    gui::ChartWindow* chart = open(compareChart());
    EXPECT_EQ(chart->objectName(), "Chart1Frm");
    EXPECT_EQ(chart->windowTitle(), "VARO Bar Chart");
    gui::ChartSettingsDialog* settings = chart->openSettings();
    EXPECT_EQ(settings->objectName(), "Chart1SettingsFrm");
    settings->colourPicker = [](const QColor& current, QWidget*) -> std::optional<QColor> {
        EXPECT_EQ(current, QColor(128, 0, 0));
        return QColor(10, 160, 200);
    };
    type("TitleText", "Mean rainfall");
    click("ColourButton");
    EXPECT_EQ(state.barColours[0], (core::Rgb{10, 160, 200}));
    click("ChangeButton");
    EXPECT_TRUE(dialogs.messages.empty()) << dialogs.lastText();
    EXPECT_EQ(chart->record().chart().title, "Mean rainfall");
    EXPECT_EQ(chart->windowTitle(), "Mean rainfall");
    EXPECT_FALSE(settings->isVisible());

    trigger("mnuReset");
    EXPECT_EQ(chart->record().chart().title, "VARO Bar Chart");
    EXPECT_EQ(chart->windowTitle(), "VARO Bar Chart");
    EXPECT_EQ(chart->record().chart().series[0].colour, (core::Rgb{10, 160, 200}))
        << "colours stay while the program runs";
    EXPECT_EQ(state.barColours[0], (core::Rgb{10, 160, 200}));
}

TEST_F(ChartScreenFixture, ARefusedFieldGetsItsLastGoodValue) {
    gui::ChartWindow* chart = open(compareChart());
    chart->openSettings();
    type("MinYText", "low");
    EXPECT_EQ(dialogs.lastText(), "Minimum Y axis value for these data must be a value.");
    EXPECT_EQ(text("MinYText"), "0");
    type("TickText", "60");
    EXPECT_EQ(dialogs.lastText(), "Ticks must be a value between 1 and 50.");
    EXPECT_EQ(text("TickText"), "5");
}

TEST_F(ChartScreenFixture, SettingsResetRestoresTheFieldsAsTheyOpened) {
    gui::ChartWindow* chart = open(compareChart());
    chart->openSettings();
    type("MaxYText", "12");
    type("Legend2Text", "Modelled");
    click("ResetButton");
    EXPECT_EQ(text("MaxYText"), "5");
    EXPECT_EQ(text("Legend2Text"), "b.txt: Mean");
}

TEST_F(ChartScreenFixture, LegendAndTickButtonsActOnTheChartAtOnce) {
    gui::ChartWindow* chart = open(compareChart());
    chart->openSettings();
    click("ClearLegendButton");
    EXPECT_FALSE(chart->record().chart().legendVisible);
    click("ShowLegendButton");
    EXPECT_TRUE(chart->record().chart().legendVisible);
    click("ClearTicksButton");
    EXPECT_FALSE(chart->record().chart().yAxis.ticks);
    click("BackButton");
    EXPECT_FALSE(chart->record().chart().yAxis.ticks) << "the buttons' changes stay";
}

TEST_F(ChartScreenFixture, TheFrequencyChartsLegendButtonTogglesItsCaption) {
    gui::ChartWindow* chart = open(
        charts::frequencyChart("Period: Annual;  Fit: Gumbel",
                               {{"obs", {1.0, 2.0, 3.0}, {5.0, 7.0, 8.0}}}, std::nullopt, state));
    EXPECT_EQ(chart->objectName(), "FAChartFrm");
    chart->openSettings();
    auto* legend = find<QAbstractButton>("LegendButton");
    EXPECT_EQ(legend->text(), "Hide Legend");
    click("LegendButton");
    EXPECT_EQ(legend->text(), "Show Legend");
    EXPECT_FALSE(chart->record().chart().legendVisible);
    type("DotSizeText", "49");
    EXPECT_EQ(dialogs.lastText(), "Dot size must be a value between 50 and 250.");
}

TEST_F(ChartScreenFixture, ALineChartOfTooManySeriesWarnsAsItOpens) {
    std::vector<charts::CategorySeries> members(12, {"member", {1.0, 2.0}});
    open(charts::lineChart({"01/01/1961", "02/01/1961"}, members, state));
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].title, "Warning Message");
    EXPECT_EQ(dialogs.messages[0].text,
              "Note - there are too many lines to display a legend on the line plot.");
}

TEST_F(ChartScreenFixture, CopyAndSavePictureGiveTheChartAsShown) {
    gui::ChartWindow* chart = open(compareChart());
    trigger("mnuCopy");
    EXPECT_EQ(QApplication::clipboard()->image().size(), chart->pictureSize());

    dialogs.pickedFiles.push_back(dir.path("chart.svg"));
    dialogs.pickedFiles.push_back(dir.path("chart.gif"));
    trigger("mnuSavePicture");
    EXPECT_TRUE(varo::testing::fileExists(dir.path("chart.svg")));
    trigger("mnuSavePicture");
    EXPECT_EQ(dialogs.errors(),
              std::vector<std::string>{"Cannot save the chart as '" + dir.path("chart.gif") +
                                       "': the file name must end in .png or .svg."});
    EXPECT_FALSE(varo::testing::fileExists(dir.path("chart.gif")));
}

TEST_F(ChartScreenFixture, TheCompareKeyOpensTheScreenWhosePlotOpensTheResultChart) {
    window->showHome();
    EXPECT_TRUE(window->toolbarAction(screens::ScreenKey::Compare)->isEnabled());
    window->goTo(screens::ScreenKey::Compare);
    auto* compare = qobject_cast<gui::CompareWidget*>(window->currentScreen());
    ASSERT_NE(compare, nullptr);
    click("tb1Plot");
    EXPECT_EQ(dialogs.lastText(), "You must select at least file 1.");

    dialogs.pickedFiles.push_back(resultsFile("one.txt", "Mean,Sum"));
    dialogs.pickedFiles.push_back(resultsFile("two.txt", "Sum,Maximum"));
    click("File1Button");
    click("File2Button");
    EXPECT_EQ(find<QLabel>("File1Label")->text(), "one.txt");
    auto* list = find<QListWidget>("StatList1");
    ASSERT_EQ(list->count(), 2);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualItemRect(list->item(1)).center());
    EXPECT_EQ(find<QListWidget>("StatList2")->currentRow(), 0) << "Sum is picked in file 2 too";
    click("ChartOption0");
    click("tb1Plot");
    gui::ChartWindow* chart = compare->chartWindow();
    ASSERT_NE(chart, nullptr);
    EXPECT_EQ(chart->objectName(), "Chart1Frm");
    const charts::ChartModel& shown = chart->record().chart();
    EXPECT_EQ(shown.title, "VARO Bar Chart");
    ASSERT_EQ(shown.series.size(), 2u);
    EXPECT_EQ(shown.series[0].name, "one.txt: Sum");
    EXPECT_EQ(shown.series[1].name, "two.txt: Sum");
    EXPECT_EQ(state.chartKind, 1);
}

TEST_F(ChartScreenFixture, ExitAsksTheProgramsQuestion) {
    QPointer<gui::ChartWindow> chart = open(compareChart());
    trigger("mnuExit"); // answered No
    EXPECT_EQ(dialogs.questions, std::vector<std::string>{"Do you really want to exit VARO?"});
    EXPECT_TRUE(window->isVisible());
    ASSERT_TRUE(chart);
    EXPECT_TRUE(chart->isVisible());
}

TEST_F(ChartScreenFixture, BackClosesTheChart) {
    QPointer<gui::ChartWindow> chart = open(compareChart());
    trigger("mnuBack");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(chart.isNull()) << "a closed chart screen is gone";
    EXPECT_TRUE(window->isVisible());
}
