// GenerateFrm: the scenario generator's screen. The person picks a daily series file (one
// value a day, or an OUT file of ensemble members) and an OUT file to write, says where the
// series starts, how many members it has and its threshold, and ticks the treatments to
// apply: occurrence (stochastic or forced to the settings' wet-day profile), amount (factor
// or addition), variance and trend (linear, exponential or logistic). The run checks every
// field in its fixed order, whichever treatments are ticked, then perturbs the series and
// writes it, and says how many days it processed.
#pragma once

#include "core/dates.hpp"
#include "core/program_state.hpp"
#include "core/progress.hpp"
#include "scenario/scenario_driver.hpp"
#include "screens/dialogs.hpp"
#include "screens/file_choice.hpp"
#include "screens/screen_run.hpp"
#include "screens/text_field.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace varo::screens {

class GenerateScreen {
public:
    static constexpr std::string_view ResultsTitle = "Results";
    static constexpr std::string_view DefaultEnsemble = "1";
    static constexpr std::string_view DefaultChange = "0";
    // An exponential trend of 0 is refused, so its field starts at 1.
    static constexpr std::string_view DefaultExpTrend = "1";
    // An option group none of whose options is chosen.
    static constexpr int NoOption = -1;
    static constexpr int Stochastic = 0, Forced = 1;
    static constexpr int Factor = 0, Addition = 1;
    static constexpr int Linear = 0, Exponential = 1, Logistic = 2;

    explicit GenerateScreen(core::ProgramState& state);

    ChosenFile inFile;
    ChosenFile outFile;
    TextField startDateText;
    TextField eSize;
    TextField thresholdText;
    bool conditionalCheck = false;
    bool occurenceCheck = false;
    int occurenceOption = Stochastic;
    TextField frequencyChangeText;
    bool preserveTotalsCheck = false;
    bool amountCheck = false;
    int amountOption = NoOption;
    TextField amountFactorText;
    TextField amountAdditionText;
    bool varianceCheck = false;
    TextField varianceFactorText;
    bool trendCheck = false;
    int trendOption = NoOption;
    TextField linearTrendText;
    TextField expTrendText;
    TextField logisticTrendText;

    // The values of the fields as their last passed checks left them.
    float amountFactor = 1.0f; // (factor + 100) / 100
    double amountAddition = 0.0;
    float frequencyFactor = 1.0f; // (change + 100) / 100
    float varianceFactor = 1.0f;  // (change + 100) / 100
    double threshold = 0.0;
    double linearTrend = 0.0;
    double expTrend = 1.0;
    double logisticTrend = 0.0;
    core::Date startDate;
    int ensembleSize = 1;

    // What the last run found, for the command line.
    std::optional<scenario::ScenarioResult> lastResult;
    // Runs draw from a generator seeded from the clock; a test may fix the seed.
    std::optional<std::uint64_t> fixedSeed;

    void chooseInFile(const std::string& path);
    void chooseOutFile(const std::string& path);
    // The file pickers, opening on the default folder.
    void pickInFile(Dialogs& dialogs);
    void pickOutFile(Dialogs& dialogs);

    // Field checks: on failure the message and the field's last good value back.
    bool checkAmountFactor(Dialogs& dialogs);
    bool checkExpTrend(Dialogs& dialogs);
    bool checkAmountAddition(Dialogs& dialogs);
    bool checkLinearTrend(Dialogs& dialogs);
    bool checkLogisticTrend(Dialogs& dialogs);
    bool checkThreshold(Dialogs& dialogs);
    bool checkFrequencyChange(Dialogs& dialogs);
    bool checkVarianceFactor(Dialogs& dialogs);
    bool checkStartDate(Dialogs& dialogs);
    // Rewrites the field as its value rounded to an integer.
    bool checkEnsembleSize(Dialogs& dialogs);

    // The toolbar's generate key: the checks in their order, an output that is the input or
    // the settings file refused, a first line too short for the ensemble refused, then the
    // run and the "Results" box. A run that ends early leaves no output.
    RunOutcome generate(Dialogs& dialogs, core::Progress& progress);
    // The toolbar's reset key: files not selected, every field and tick back to its default.
    void reset();
    // Shows the settings' start date and threshold afresh after the settings changed.
    void refreshGlobals();

private:
    RunOutcome runChecks(Dialogs& dialogs);
    scenario::ScenarioRequest request() const;

    core::ProgramState& state_;
};

} // namespace varo::screens
