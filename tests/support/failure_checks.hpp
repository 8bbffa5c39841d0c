// Checks of the ways a run ends other than normally: a numbered failure whose description
// holds a given part, and a stop with a message of its own.
#pragma once

#include "core/failure.hpp"
#include "core/notices.hpp"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace varo::testing {

// Success when `action` throws a `core::Failure` of `number` whose description contains
// `part`; otherwise a message saying what happened instead.
inline ::testing::AssertionResult failsWith(const std::function<void()>& action, int number,
                                            std::string_view part = {}) {
    try {
        action();
    } catch (const core::Failure& failure) {
        if (failure.number() != number) {
            return ::testing::AssertionFailure() << "failure " << failure.number() << " instead of "
                                                 << number << ": " << failure.description();
        }
        if (failure.description().find(part) == std::string::npos) {
            return ::testing::AssertionFailure()
                   << "no '" << part << "' in: " << failure.description();
        }
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "no failure";
}

// The message of the `core::RunStopped` that `action` throws, or "no stop".
inline std::string stopMessage(const std::function<void()>& action) {
    try {
        action();
    } catch (const core::RunStopped& stopped) {
        return stopped.message();
    }
    return "no stop";
}

} // namespace varo::testing
