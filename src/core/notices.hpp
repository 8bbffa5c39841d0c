// What a run says to the person while it runs, without knowing who shows it.
//
// `Notifier` carries warnings that do not stop a run (the linear-dependency warning of a
// fit, for example); the screen that started the run shows them in a box. A run that
// ends with a message of its own rather than the failure box throws `RunStopped`; the
// screen shows the message in a box titled "Error Message" and runs its cleanup.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace varo::core {

class Notifier {
public:
    virtual ~Notifier() = default;
    // A box with the title and text and a warning (or information) icon.
    virtual void warning(std::string_view title, std::string_view text) = 0;
    virtual void information(std::string_view title, std::string_view text) = 0;
    // A box titled "Error Message" for a problem that does not stop the run (a part of the
    // results that cannot be computed). Without an override it goes out as a warning.
    virtual void error(std::string_view text) { warning("Error Message", text); }
};

// Keeps nothing; for runs whose warnings nobody reads (benchmarks, some tests).
class SilentNotifier final : public Notifier {
public:
    void warning(std::string_view, std::string_view) override {}
    void information(std::string_view, std::string_view) override {}
};

class RunStopped : public std::runtime_error {
public:
    explicit RunStopped(const std::string& message) : std::runtime_error(message) {}
    std::string message() const { return what(); }
};

} // namespace varo::core
