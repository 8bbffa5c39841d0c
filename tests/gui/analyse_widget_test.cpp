#include "gui/analyse_widget.hpp"
#include "gui/results_table_view.hpp"
#include "gui/stats_select_widget.hpp"
#include "gui_test_support.hpp"
#include "support/results_file_tables.hpp"

#include <QCheckBox>
#include <QLabel>
#include <QTableWidget>

using namespace varo;
using varo::testing::GuiFixture;

namespace {
std::string data(const std::string& name) {
    return std::string(VARO_TEST_DATA) + "/statistics/" + name;
}
} // namespace

TEST_F(GuiFixture, SummaryStatisticsScreenRunsAModelledFile) {
    window->goTo(screens::ScreenKey::AnalyseData);
    dir.write("run.SIM", varo::testing::readFile(data("ensemble3.SIM")));
    dialogs.pickedFiles.push_back(
        dir.write("run.OUT", varo::testing::readFile(data("ensemble3.OUT"))));
    click("SelectInputFile");
    dialogs.pickedFiles.push_back(dir.path("r.txt"));
    click("SaveButton");
    click("tb1Details");
    EXPECT_EQ(text("FileEnsembleSize"), "3");

    type("EndDateText", "31/12/1960");
    EXPECT_EQ(dialogs.lastText(), "Analysis end date must be later than analysis start date.");
    EXPECT_EQ(text("EndDateText"), "31/12/1990");
    type("StartDateText", "01/01/1962");
    type("EndDateText", "31/12/1962");
    EXPECT_EQ(text("NoOfDaysText"), "365");
    click("EnsembleMeanCheck");
    click("tb1Analyse");
    EXPECT_EQ(dialogs.lastText(), "Summary statistics saved to r.txt.");
    const std::string results = varo::testing::readFile(dir.path("r.txt"));
    EXPECT_EQ(results.rfind("SUMMARY STATISTICS FOR: run.OUT\r\nAnalysis Start Date: 01/01/1962\r\n"
                            "Analysis End Date: 31/12/1962\r\nEnsemble Member(s): ALL\r\n"
                            "Month,Mean,Maximum,Minimum,Variance,Sum\r\n",
                            0),
              0u);
}

// Ticks past eight and refused fields take nothing; what stands is written on leaving.
TEST_F(GuiFixture, StatisticsSelectionWritesWhatPassedOnLeaving) {
    gui::ScreenContext context{state, dialogs, window->runs(), {}, {}};
    gui::StatsSelectDialog dialog(context, window.get()); // a child: the helpers find its controls
    dialog.show();
    for (int i : {4, 6, 7, 30}) {
        click(QString("Check1_%1").arg(i));
    }
    EXPECT_EQ(dialogs.errors(),
              std::vector<std::string>{"You can select up to a maximum of eight statistics only."});
    EXPECT_FALSE(find<QCheckBox>("Check1_30")->isChecked());
    type("AddPercentText", "120");
    EXPECT_EQ(dialogs.lastText(), "Percentile must be a value between 0 and 100.");
    EXPECT_EQ(text("AddPercentText"), "95");
    type("NDayTotalText", "10");
    click("DeltaOption1");

    dialog.accept();
    EXPECT_TRUE(state.statisticTable[3].selected);
    EXPECT_FALSE(state.statisticTable[29].selected);
    EXPECT_EQ(state.statisticParameters.nDayTotal, 10);
    EXPECT_EQ(state.statisticParameters.deltaKind, 2);
}

// A delta run of the ensemble mean shows every table of its results file, cell for cell,
// and picks out the t values above 1.96; the tables stand before the closing box is shown.
TEST_F(GuiFixture, SummaryStatisticsShowTheTablesOfTheResultsFile) {
    for (auto& entry : state.statisticTable) {
        const bool chosen = entry.name == "Mean" || entry.name == "Variance" ||
                            entry.name == "Count" || entry.name == "ACF";
        entry.selected = chosen;
    }
    auto& periods = state.statisticParameters;
    periods.deltaKind = 2;
    periods.basePeriod = {{1, 1, 1961}, {31, 12, 1962}};
    periods.periodA = {{1, 1, 1963}, {31, 12, 1964}};
    periods.periodB = {{1, 1, 1965}, {31, 12, 1966}};
    periods.periodC = {{1, 1, 1967}, {30, 6, 1967}};
    window->goTo(screens::ScreenKey::AnalyseData);
    dir.write("run.SIM", varo::testing::readFile(data("deltas.SIM")));
    dialogs.pickedFiles = {dir.write("run.OUT", varo::testing::readFile(data("deltas.OUT"))),
                           dir.path("r.txt")};
    click("SelectInputFile");
    click("SaveButton");
    click("EnsembleMeanCheck");
    click("DeltaCheck");
    auto* tabs = find<gui::ResultsTabs>("ResultsTables");
    EXPECT_EQ(tabs->count(), 0);
    int tablesWhenSaid = -1;
    dialogs.onMessage = [&](const varo::testing::ShownMessage&) { tablesWhenSaid = tabs->count(); };
    click("tb1Analyse");
    EXPECT_EQ(dialogs.lastText(), "Summary statistics saved to r.txt.");
    EXPECT_EQ(tablesWhenSaid, 7);

    const auto expected =
        varo::testing::resultsFileTables(varo::testing::readFile(dir.path("r.txt")));
    ASSERT_EQ(tabs->count(), static_cast<int>(expected.size()));
    for (int t = 0; t < tabs->count(); ++t) {
        SCOPED_TRACE(tabs->tabText(t).toStdString());
        QTableWidget* grid = tabs->view(t)->grid();
        varo::testing::TextTable shown{{}};
        for (int c = 0; c < grid->columnCount(); ++c) {
            shown[0].push_back(grid->horizontalHeaderItem(c)->text().toStdString());
        }
        for (int r = 0; r < grid->rowCount(); ++r) {
            shown.emplace_back();
            for (int c = 0; c < grid->columnCount(); ++c) {
                const QTableWidgetItem* cell = grid->item(r, c);
                shown.back().push_back(cell->text().toStdString());
                const bool aboveCritical =
                    tabs->tabText(t) == "T test" && c > 0 && cell->text().toDouble() > 1.96;
                EXPECT_EQ(cell->font().bold(), aboveCritical) << r << "," << c;
            }
        }
        EXPECT_EQ(shown, expected[static_cast<size_t>(t)]);
    }
    EXPECT_EQ(tabs->tabText(6), "Degrees of freedom");
    EXPECT_EQ(tabs->view(2)->title()->text(),
              "Period A: 01/01/1963 to 31/12/1964, absolute difference");

    // A refused run leaves no tables of an earlier one.
    click("EnsembleMeanCheck");
    type("EnsembleNumber", "7");
    click("tb1Analyse");
    EXPECT_EQ(dialogs.lastText(), "Ensemble member does not exist in data file.");
    EXPECT_EQ(tabs->count(), 0);
}
