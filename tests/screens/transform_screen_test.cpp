#include "screens/transform_screen.hpp"
#include "support/scripted_dialogs.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

using namespace varo;
using varo::testing::ScriptedDialogs;
using varo::testing::TempDir;
using Outcome = varo::screens::RunOutcome;

namespace {
struct TransformScreenFixture : ::testing::Test {
    core::ProgramState state;
    ScriptedDialogs dialogs;
    core::NullProgress progress;
    TempDir dir;
    TransformScreenFixture() { core::initialiseState(state); }

    // Types a text into a field and runs its check, as leaving the field does.
    static bool type(screens::TextField& field, const std::string& text,
                     const std::function<bool()>& check) {
        field.text = text;
        return check();
    }
};
} // namespace

TEST_F(TransformScreenFixture, FieldChecksShowTheirMessagesAndRestoreTheLastGoodValue) {
    screens::TransformScreen screen(state);
    const auto lamda = [&] { return screen.checkLamda(dialogs); };
    EXPECT_FALSE(type(screen.lamdaValText, "abc", lamda));
    EXPECT_FALSE(type(screen.lamdaValText, "2.01", lamda));
    EXPECT_EQ(screen.lamdaValText.text, "1");
    EXPECT_TRUE(type(screen.lamdaValText, "-2", lamda));
    EXPECT_EQ(screen.lamda, -2.0);

    const auto shift = [&] { return screen.checkShift(dialogs); };
    EXPECT_FALSE(type(screen.leftShiftText, "x", shift));
    EXPECT_FALSE(type(screen.leftShiftText, "100.5", shift));
    EXPECT_TRUE(type(screen.leftShiftText, "100", shift));

    const auto binomial = [&] { return screen.checkBinomial(dialogs); };
    EXPECT_FALSE(type(screen.binomialText, "five", binomial));
    EXPECT_TRUE(type(screen.binomialText, "-2.5", binomial));
    EXPECT_EQ(screen.threshold, -2.5f);

    const auto lag = [&] { return screen.checkLag(dialogs); };
    EXPECT_FALSE(type(screen.lagText, "1.5.", lag));
    EXPECT_FALSE(type(screen.lagText, "1000.5", lag));
    EXPECT_TRUE(type(screen.lagText, "-2.5", lag));
    EXPECT_EQ(screen.lag, -2); // ties go to the even integer

    EXPECT_EQ(dialogs.errors(), (std::vector<std::string>{
                                    "Lamda value must be a value between -2 and +2.",
                                    "Lamda value must be a value between -2 and +2.",
                                    "Shift value must be a value between 0 and 100",
                                    "Shift value must be a value between 0 and 100.",
                                    "Threshold value must be a number (positive or negative).",
                                    "Lag value must be an integer (positive or negative).",
                                    "Lag value must be a value between -1000 and +1000.",
                                }));
}

TEST_F(TransformScreenFixture, ColumnsAndTheEnsembleToExtractCheckEachOther) {
    screens::TransformScreen screen(state);
    const auto columns = [&] { return screen.checkColumns(dialogs); };
    const auto ensemble = [&] { return screen.checkEnsemble(dialogs); };
    EXPECT_FALSE(type(screen.colsText, "many", columns));
    EXPECT_FALSE(type(screen.colsText, "0.9", columns));
    EXPECT_FALSE(type(screen.colsText, "100.1", columns));
    EXPECT_TRUE(type(screen.colsText, "4.5", columns));
    EXPECT_EQ(screen.columns, 4);
    EXPECT_FALSE(type(screen.ensembleExtractText, "5", ensemble));
    EXPECT_FALSE(type(screen.ensembleExtractText, "0", ensemble));
    EXPECT_FALSE(type(screen.ensembleExtractText, "x", ensemble));
    EXPECT_TRUE(type(screen.ensembleExtractText, "3", ensemble));
    // Fewer columns than the ensemble to extract: refused, and the ensemble goes back to 1.
    EXPECT_FALSE(type(screen.colsText, "2", columns));
    EXPECT_EQ(screen.colsText.text, "4.5");
    EXPECT_EQ(screen.ensembleExtractText.text, "1");
    EXPECT_EQ(screen.ensemble, 1);
    EXPECT_EQ(dialogs.errors(), (std::vector<std::string>{
                                    "Number of columns must be a positive integer.",
                                    "Number of columns must be a value between 1 and 100.",
                                    "Number of columns must be a value between 1 and 100.",
                                    "Ensemble to extract must be within range of input data.",
                                    "Ensemble to extract must be a value between 1 and 100.",
                                    "Ensemble to extract must be a positive integer.",
                                    "Input data must include an ensemble to extract if required.",
                                }));
}

TEST_F(TransformScreenFixture, RunChecksComeInTheirOrder) {
    screens::TransformScreen screen(state);
    EXPECT_EQ(screen.transform(dialogs, progress), Outcome::Refused);
    EXPECT_EQ(dialogs.lastText(), "You must select a file to transform.");
    screen.input.choose(dir.write("in.dat", "1\r\n2\r\n"));
    EXPECT_EQ(screen.transform(dialogs, progress), Outcome::Refused);
    EXPECT_EQ(dialogs.lastText(), "You must select a file to save the transformation to.");
    screen.output.choose(dir.path("out.dat"));
    EXPECT_EQ(screen.output.text, "out.dat");

    // A bad lag stops only a lag run; a bad threshold only a binomial run.
    screen.option = dataprep::transform::Lag;
    screen.lagText.text = "x";
    screen.lagText.lastGood = "y";
    EXPECT_EQ(screen.transform(dialogs, progress), Outcome::Refused);
    screen.option = dataprep::transform::Copy;
    screen.lagText.text = "x";
    EXPECT_EQ(screen.transform(dialogs, progress), Outcome::Done);
    EXPECT_EQ(dialogs.errors().back(), "Lag value must be an integer (positive or negative).");

    screen.extractEnsembleCheck = true;
    EXPECT_EQ(screen.transform(dialogs, progress), Outcome::Refused);
    EXPECT_EQ(dialogs.lastText(), "You cannot extract a column from a file with only one column.");
}

TEST_F(TransformScreenFixture, ARunWritesTheFileCopiesTheDescriptionAndReports) {
    screens::TransformScreen screen(state);
    std::filesystem::create_directories(dir.path("out"));
    screen.input.choose(dir.write("run.OUT", "1 -999\r\n0 4\r\n"));
    dir.write("run.SIM", "sim\r\n");
    screen.output.choose(dir.path("out/logs.dat"));
    screen.colsText.text = "2";
    screen.simCheck = true;
    EXPECT_EQ(screen.transform(dialogs, progress), Outcome::Done);
    EXPECT_EQ(varo::testing::readFile(dir.path("out/logs.dat")),
              "0.000000      -999          \r\n-999          1.386294      \r\n");
    EXPECT_EQ(varo::testing::readFile(dir.path("logs.SIM")), "sim\r\n");
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].title, "Transformation complete");
    EXPECT_EQ(dialogs.messages[0].icon, screens::Icon::Information);
    EXPECT_EQ(dialogs.messages[0].text,
              "2 rows processed.\r\n1 missing value(s) in file (not transformed).\r\n"
              "1 value(s) could not be converted (overflow would occur),\r\n"
              " - therefore written to file as -999 (current missing code).");
}

TEST_F(TransformScreenFixture, FailuresShowTheFailureBox) {
    screens::TransformScreen screen(state);
    screen.input.choose(dir.path("absent.dat"));
    screen.output.choose(dir.path("out.dat"));
    EXPECT_EQ(screen.transform(dialogs, progress), Outcome::Failed);
    EXPECT_NE(dialogs.lastText().find("\r\nFile not found.\r\n"), std::string::npos);
    screen.input.choose(dir.write("in.dat", "1\r\n"));
    screen.option = dataprep::transform::BoxCox;
    EXPECT_EQ(screen.transform(dialogs, progress), Outcome::Failed);
    EXPECT_EQ(dialogs.lastText(), "Sorry - insufficient data to perform Box Cox transformation.");
    EXPECT_FALSE(screen.lastReport.has_value());
}

TEST_F(TransformScreenFixture, ResetTakesTheThresholdAndTheCaptionFromTheSettings) {
    state.thresh = 0.25f;
    state.globalMissingCode = -99.5;
    screens::TransformScreen screen(state);
    screen.input.choose("/x/in.dat");
    screen.option = dataprep::transform::Cube;
    screen.wrapCheck = true;
    screen.reset();
    EXPECT_EQ(screen.input.text, "Not selected");
    EXPECT_EQ(screen.output.text, "Not entered");
    EXPECT_EQ(screen.option, dataprep::transform::NaturalLog);
    EXPECT_FALSE(screen.wrapCheck);
    EXPECT_EQ(screen.binomialText.text, ".25");
    EXPECT_EQ(screen.wrapCaption(), "Wrap numbers round or fill gaps with missing code (-99.5) ");
}

// A run that is refused, or fails on its input, leaves every file as it was: the output of
// an earlier run, the input, and the description file's earlier copy.
TEST_F(TransformScreenFixture, RefusedOrFailedRunsLeaveEveryFileAsItWas) {
    namespace code = dataprep::transform;
    const std::string goodInput = "1 2\r\n3 4\r\n";
    struct Case {
        std::string what;
        std::string input;
        int option;
        std::string output; // a name in the folder
        bool simCheck;
        Outcome outcome;
        std::string part;
    };
    const std::vector<Case> cases = {
        {"the input as output", goodInput, code::SquareRoot, "in.dat", false, Outcome::Refused,
         "The output file '" + dir.path("in.dat") + "' is the same file as the input file '" +
             dir.path("in.dat") + "'"},
        {"a link to the input as output", goodInput, code::Copy, "link.dat", false,
         Outcome::Refused, "is the same file as the input file"},
        {"the input's description file as output", goodInput, code::Copy, "in.SIM", true,
         Outcome::Refused, "'" + dir.path("in.SIM") + "' is the same file as the input file"},
        {"a word at row 2", "1 2\r\n3 x\r\n", code::Copy, "out.dat", true, Outcome::Failed,
         "'x' on line 2, column 3"},
        {"a short last row", "1 2\r\n3\r\n", code::SquareRoot, "out.dat", true, Outcome::Failed,
         "ends part way through row 2: its 3 values do not fill rows of 2 columns."},
        {"a number beyond range", "1 2\r\n1e999 4\r\n", code::Lag, "out.dat", false,
         Outcome::Failed, "'1e999' on line 2, column 1"},
        {"a Box-Cox of two columns", goodInput, code::BoxCox, "out.dat", false, Outcome::Failed,
         "Sorry - Box Cox transformation can only be applied to single column data files."},
        {"an output that is a folder", goodInput, code::Copy, "folder", false, Outcome::Failed,
         "it is a folder"},
    };
    std::filesystem::create_directories(dir.path("folder"));
    for (const Case& c : cases) {
        const auto input = dir.write("in.dat", c.input);
        const auto sim = dir.write("in.SIM", "input description\r\n");
        std::filesystem::remove(dir.path("link.dat"));
        std::filesystem::create_symlink(input, dir.path("link.dat"));
        const auto earlier = dir.write("out.dat", "earlier output\r\n");
        const auto earlierCopy = dir.write("out.SIM", "earlier copy\r\n");
        screens::TransformScreen screen(state);
        screen.input.choose(input);
        screen.output.choose(dir.path(c.output));
        screen.colsText.text = "2";
        screen.option = c.option;
        screen.simCheck = c.simCheck;
        dialogs.messages.clear();
        EXPECT_EQ(screen.transform(dialogs, progress), c.outcome) << c.what;
        EXPECT_NE(dialogs.lastText().find(c.part), std::string::npos)
            << c.what << ": " << dialogs.lastText();
        EXPECT_EQ(varo::testing::readFile(input), c.input) << c.what;
        EXPECT_EQ(varo::testing::readFile(sim), "input description\r\n") << c.what;
        EXPECT_EQ(varo::testing::readFile(earlier), "earlier output\r\n") << c.what;
        EXPECT_EQ(varo::testing::readFile(earlierCopy), "earlier copy\r\n") << c.what;
        EXPECT_FALSE(screen.outputStarted) << c.what;
    }
}
