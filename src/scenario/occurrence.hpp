// The occurrence treatment: more or fewer wet days in each member, by random draws or
// forced to a wet-day percentage for each month, with or without keeping the member's
// total of wet values.
//
// A member's wet and dry days are kept in month lists. A day made dry takes the value of
// the threshold (not 0), so that a statistic counting days above the threshold sees it dry.
// A day made wet takes the value of a wet day drawn from the same month, or from the nearest
// month that has one, so that no new amounts appear. A stochastic treatment draws the month
// of each change by weights: the months' shares of dry days when days are removed, their
// wet fractions when days are added, a month leaving the draw (its weight passing to the
// month after it) once it has nothing left to change.
#pragma once

#include "core/notices.hpp"
#include "core/progress.hpp"
#include "core/random.hpp"
#include "core/record_calendar.hpp"
#include "scenario/scenario_data.hpp"
#include "scenario/series_scope.hpp"

#include <array>
#include <string_view>

namespace varo::scenario {

inline constexpr std::string_view OccurrenceCaption = "Applying Occurrence";
inline constexpr std::string_view OverflowMessage =
    "You cannot add that many days as the dataset will overflow!";
inline constexpr std::string_view SomeMembersDryWarning =
    "Warning - at least one ensemble has zero rainfall days and cannot be manipulated.";
inline constexpr std::string_view AllMembersDryWarning =
    "Warning - there are zero rainfall days available so the data cannot be manipulated.";

enum class OccurrenceKind { Stochastic, Forced };

struct OccurrenceTreatment {
    OccurrenceKind kind = OccurrenceKind::Stochastic;
    // Stochastic: wanted wet days over present ones, (change + 100) / 100 in single precision.
    float frequencyFactor = 1.0f;
    // Forced: the wet-day percentage of each month, January first.
    std::array<float, 12> monthlyPercentages{};
    bool preserveTotals = false;
};

// Where the series starts, for the month of each day.
struct SeriesStart {
    core::CalendarRule calendar = core::RealCalendar;
    core::Date date;
};

// Applies the treatment to every member in turn, under "Applying Occurrence". A member
// without wet days is left as it is, and after all members a "Results" warning says so
// (`SomeMembersDryWarning` or, when no member had any, `AllMembersDryWarning`). Adding more
// days than the series has days that are not wet stops the run with `OverflowMessage`;
// a draw that could only go on for ever (every month it may still draw has nothing left to
// change, or no month has a wet day to copy) stops it with a message saying so. Throws
// `core::Cancelled` on a stop between members.
void applyOccurrence(ScenarioData& data, const OccurrenceTreatment& treatment,
                     const SeriesScope& scope, const SeriesStart& start,
                     core::UniformRandom& random, core::Progress& progress,
                     core::Notifier& notifier);

} // namespace varo::scenario
