// StatsSelect ("Statistics Selection"): which of the 30 statistics the summary statistics
// screen computes (eight at most), the parameters of the threshold, percentile and N-day
// statistics, the kind of delta and the base period with Periods A, B and C. Each field
// is checked when it is left; leaving the screen writes the choices into the program
// state, where they stay while the program runs.
#pragma once

#include "core/program_state.hpp"
#include "screens/dialogs.hpp"
#include "screens/text_field.hpp"

#include <array>
#include <string>

namespace varo::screens {

class StatsSelectScreen {
public:
    static constexpr std::string_view TooManyMessage =
        "You can select up to a maximum of eight statistics only.";
    static constexpr int BoxCount = 30;

    enum class Period { Base, A, B, C };

    explicit StatsSelectScreen(core::ProgramState& state);

    // Check1: one tick box per statistic, 1 to 30 in the order of the statistic table.
    std::array<bool, BoxCount + 1> check1{};

    TextField baseStartText;
    TextField baseEndText;
    TextField periodAStartText;
    TextField periodAEndText;
    TextField periodBStartText;
    TextField periodBEndText;
    TextField periodCStartText;
    TextField periodCEndText;
    int deltaOption = 0; // 0 "Percentage Difference", 1 "Absolute Difference"
    TextField addPercentText;
    TextField precPotText;
    TextField poThreshText;
    TextField pbtThreshText;
    TextField nDayTotalText;

    // The name beside box `index`.
    const std::string& statisticName(int index) const;
    int tickCount() const;

    // A click that sets box `index` to `ticked`. A ninth tick is refused with
    // `TooManyMessage` and the box is cleared again; answers whether the box took the click.
    bool click(Dialogs& dialogs, int index, bool ticked);

    // Field checks, on leaving the field.
    bool checkAddPercent(Dialogs& dialogs);
    bool checkPrecPot(Dialogs& dialogs);
    bool checkPoThresh(Dialogs& dialogs);
    bool checkPbtThresh(Dialogs& dialogs);
    bool checkNDayTotal(Dialogs& dialogs);
    bool checkStart(Dialogs& dialogs, Period period);
    bool checkEnd(Dialogs& dialogs, Period period);

    TextField& startText(Period period);
    TextField& endText(Period period);

    // Leaving the screen: the ticks as the statistics selected, the dates, the delta kind and
    // the parameters, each field's last good value, go into the program state.
    void leave();

private:
    core::ProgramState& state_;
};

} // namespace varo::screens
