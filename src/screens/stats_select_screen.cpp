#include "screens/stats_select_screen.hpp"

#include "core/dates.hpp"
#include "core/number_format.hpp"
#include "core/numeric_text.hpp"

#include <optional>

namespace varo::screens {

namespace {

constexpr int LongestPeriodYears = 50;

// How a period's messages name it: "Base" / "base", "Period A" / "period A".
struct PeriodWords {
    std::string name;
    std::string lower;
    bool base;
};

PeriodWords wordsFor(StatsSelectScreen::Period period) {
    switch (period) {
    case StatsSelectScreen::Period::Base:
        return {"Base", "base", true};
    case StatsSelectScreen::Period::A:
        return {"Period A", "period A", false};
    case StatsSelectScreen::Period::B:
        return {"Period B", "period B", false};
    case StatsSelectScreen::Period::C:
        return {"Period C", "period C", false};
    }
    return {"Base", "base", true};
}

FieldCheck percentileCheck() {
    const std::string message = "Percentile must be a value between 0 and 100.";
    return rangeCheck(0.0, 100.0, message, message);
}

FieldCheck thresholdCheck() {
    return [](const std::string& text) -> std::optional<std::string> {
        if (!core::isNumeric(text)) {
            return "Threshold must be a value.";
        }
        return std::nullopt;
    };
}

// The two dates of a period in order and less than 50 calendar years apart, or the
// message that refuses them. `isStart` says which of the two fields is being left.
std::optional<std::string> periodCheck(const PeriodWords& words, const std::string& startText,
                                       const std::string& endText, bool isStart) {
    const auto start = core::parseDate(startText);
    const auto end = core::parseDate(endText);
    if (isStart && !start) {
        return words.name + " start date is invalid.";
    }
    if (!isStart && !end) {
        return words.name + " end date is invalid.";
    }
    if (!start || !end) {
        return std::nullopt; // the other field is checked when it is left
    }
    if (core::dayDifference(*start, *end) <= 0) {
        if (isStart) {
            return words.name + " start date must be earlier than " +
                   (words.base ? words.lower : words.name) + " end date.";
        }
        return words.name + " end date must be later than " + words.lower + " start date.";
    }
    if (core::yearDifference(*start, *end) >= LongestPeriodYears) {
        if (isStart || words.base) {
            return words.name + " period must be less than 50 years.";
        }
        return words.name + " must be less than 50 years.";
    }
    return std::nullopt;
}

// A period date as its field last held one that passed, the stored date otherwise.
core::Date dateOf(const TextField& field, const core::Date& stored) {
    return core::parseDate(field.lastGood).value_or(stored);
}

void showPeriod(TextField& start, TextField& end, const core::DatePeriod& period) {
    start.reset(core::formatDate(period.start));
    end.reset(core::formatDate(period.end));
}

void keepPeriod(core::DatePeriod& period, const TextField& start, const TextField& end) {
    period = {dateOf(start, period.start), dateOf(end, period.end)};
}

} // namespace

StatsSelectScreen::StatsSelectScreen(core::ProgramState& state) : state_(state) {
    for (int i = 1; i <= BoxCount; ++i) {
        check1[i] = core::statisticSelected(state_, i);
    }
    const core::StatisticParameters& p = state_.statisticParameters;
    showPeriod(baseStartText, baseEndText, p.basePeriod);
    showPeriod(periodAStartText, periodAEndText, p.periodA);
    showPeriod(periodBStartText, periodBEndText, p.periodB);
    showPeriod(periodCStartText, periodCEndText, p.periodC);
    deltaOption = p.deltaKind == 2 ? 1 : 0;
    addPercentText.reset(core::generalTextSingle(p.percentile));
    precPotText.reset(core::generalTextSingle(p.potPercentile));
    poThreshText.reset(core::generalTextSingle(p.peaksOverThreshold));
    pbtThreshText.reset(core::generalTextSingle(p.peaksBelowThreshold));
    nDayTotalText.reset(std::to_string(p.nDayTotal));
}

const std::string& StatsSelectScreen::statisticName(int index) const {
    return state_.statisticTable.at(static_cast<size_t>(index - 1)).name;
}

int StatsSelectScreen::tickCount() const {
    int count = 0;
    for (int i = 1; i <= BoxCount; ++i) {
        count += check1[i] ? 1 : 0;
    }
    return count;
}

bool StatsSelectScreen::click(Dialogs& dialogs, int index, bool ticked) {
    check1.at(static_cast<size_t>(index)) = ticked;
    if (ticked && tickCount() > 8) {
        dialogs.error(TooManyMessage);
        check1[index] = false;
        return false;
    }
    return true;
}

bool StatsSelectScreen::checkAddPercent(Dialogs& dialogs) {
    return addPercentText.check(dialogs, percentileCheck());
}
bool StatsSelectScreen::checkPrecPot(Dialogs& dialogs) {
    return precPotText.check(dialogs, percentileCheck());
}
bool StatsSelectScreen::checkPoThresh(Dialogs& dialogs) {
    return poThreshText.check(dialogs, thresholdCheck());
}
bool StatsSelectScreen::checkPbtThresh(Dialogs& dialogs) {
    return pbtThreshText.check(dialogs, thresholdCheck());
}

bool StatsSelectScreen::checkNDayTotal(Dialogs& dialogs) {
    const std::string message = "N-day total must be a value between 2 and 100.";
    return nDayTotalText.check(dialogs, rangeCheck(2.0, 100.0, message, message));
}

TextField& StatsSelectScreen::startText(Period period) {
    switch (period) {
    case Period::A:
        return periodAStartText;
    case Period::B:
        return periodBStartText;
    case Period::C:
        return periodCStartText;
    case Period::Base:
        break;
    }
    return baseStartText;
}

TextField& StatsSelectScreen::endText(Period period) {
    switch (period) {
    case Period::A:
        return periodAEndText;
    case Period::B:
        return periodBEndText;
    case Period::C:
        return periodCEndText;
    case Period::Base:
        break;
    }
    return baseEndText;
}

bool StatsSelectScreen::checkStart(Dialogs& dialogs, Period period) {
    const std::string end = endText(period).text;
    return startText(period).check(dialogs, [&](const std::string& text) {
        return periodCheck(wordsFor(period), text, end, true);
    });
}

bool StatsSelectScreen::checkEnd(Dialogs& dialogs, Period period) {
    const std::string start = startText(period).text;
    return endText(period).check(dialogs, [&](const std::string& text) {
        return periodCheck(wordsFor(period), start, text, false);
    });
}

void StatsSelectScreen::leave() {
    for (int i = 1; i <= BoxCount; ++i) {
        state_.statisticTable.at(static_cast<size_t>(i - 1)).selected = check1[i];
    }
    core::StatisticParameters& p = state_.statisticParameters;
    keepPeriod(p.basePeriod, baseStartText, baseEndText);
    keepPeriod(p.periodA, periodAStartText, periodAEndText);
    keepPeriod(p.periodB, periodBStartText, periodBEndText);
    keepPeriod(p.periodC, periodCStartText, periodCEndText);
    p.deltaKind = static_cast<std::int16_t>(deltaOption == 1 ? 2 : 1);
    p.percentile = static_cast<float>(core::leadingNumber(addPercentText.lastGood));
    p.potPercentile = static_cast<float>(core::leadingNumber(precPotText.lastGood));
    p.peaksOverThreshold = static_cast<float>(core::leadingNumber(poThreshText.lastGood));
    p.peaksBelowThreshold = static_cast<float>(core::leadingNumber(pbtThreshText.lastGood));
    p.nDayTotal = static_cast<std::int16_t>(core::roundedInteger(nDayTotalText.lastGood));
}

} // namespace varo::screens
