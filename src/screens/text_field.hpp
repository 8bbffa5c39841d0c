// An entry field as the person typed it, with the last value that passed its check.
// A refused entry shows its message and puts the last good value back.
#pragma once

#include "core/numeric_text.hpp"
#include "screens/dialogs.hpp"

#include <functional>
#include <optional>
#include <string>

namespace varo::screens {

// A field check answers the message it failed with, or nothing when the text passes.
using FieldCheck = std::function<std::optional<std::string>(const std::string& text)>;

// The check of a numeric field (`core::rangeRefusal`): `notNumber` for text that is no
// number, `outside` for a number outside the range.
inline FieldCheck rangeCheck(double low, double high, std::string notNumber, std::string outside,
                             core::RangeEnds ends = core::RangeEnds::Included) {
    return [=](const std::string& text) {
        return core::rangeRefusal(text, low, high, notNumber, outside, ends);
    };
}

struct TextField {
    std::string text;
    std::string lastGood;

    explicit TextField(std::string initial = {}) : text(initial), lastGood(std::move(initial)) {}

    // Sets both the text and the last good value (a value the program puts there).
    void reset(const std::string& value) {
        text = value;
        lastGood = value;
    }

    // Runs the check on the text: on failure shows the message in an "Error Message" box,
    // restores the last good value and answers false.
    bool check(Dialogs& dialogs, const FieldCheck& fieldCheck) {
        if (const auto message = fieldCheck(text)) {
            dialogs.error(*message);
            text = lastGood;
            return false;
        }
        lastGood = text;
        return true;
    }
};

} // namespace varo::screens
