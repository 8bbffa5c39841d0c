#include "gui_test_support.hpp"

#include "gui/screen_vars_widget.hpp"

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
