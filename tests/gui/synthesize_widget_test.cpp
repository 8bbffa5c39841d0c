#include "gui_test_support.hpp"

#include <QLabel>
#include <QListWidget>

using namespace varo;
using varo::testing::GuiFixture;
using varo::testing::readFile;

namespace {
const QString Data = QString(VARO_TEST_DATA) + "/weathergen";
}

TEST_F(GuiFixture, WeatherGeneratorScreenViewsDetailsAndRuns) {
    window->goTo(screens::ScreenKey::WeatherGen);

    dialogs.pickedFiles.push_back((Data + "/reg.PAR").toStdString());
    click("PARFileButton");
    dialogs.pickedFiles.push_back(Data.toStdString());
    click("Dir2");
    click("ViewPredictors");
    EXPECT_EQ(find<QLabel>("PARFileText")->text(), "reg.PAR");
    EXPECT_EQ(text("RLengthText"), "10000");
    EXPECT_EQ(find<QLabel>("ProcessLabel")->text(), "Unconditional");
    EXPECT_EQ(find<QLabel>("AutoRegressLabel")->text(), "True");
    EXPECT_EQ(find<QListWidget>("PredictorList")->count(), 3);

    // A refused ensemble size shows its message and the field's reset value.
    type("ESize", "0");
    click("tb1Synthesize");
    EXPECT_EQ(dialogs.lastText(), "Ensemble Size must be between 1 and 100.");
    EXPECT_EQ(text("ESize"), "20");

    type("FStartText", "27/02/1960");
    type("FLengthText", "12");
    type("ESize", "3.6");
    dialogs.pickedFiles.push_back(dir.path("run.OUT"));
    click("SaveAsButton");
    EXPECT_EQ(find<QLabel>("OutFileText")->text(), "run.OUT");
    click("tb1Synthesize");
    EXPECT_EQ(dialogs.messages.back().title, "Results");
    EXPECT_EQ(dialogs.lastText(), "Synthesis completed.");
    EXPECT_EQ(text("ESize"), "4");
    const std::string out = readFile(dir.path("run.OUT"));
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 12);
    EXPECT_EQ(out.find("\r\n"), 4u * 14);
}
