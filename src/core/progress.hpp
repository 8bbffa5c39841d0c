// Progress and cancelling of long runs.
//
// A long loop calls `report` once a day of data (implementations throttle their redraws)
// and then `stopRequested`, which reads and clears the stop flag: one confirmed cancel
// stops one operation. The desktop program's implementation yields to the event loop in
// `report`, where Escape can be pressed; the command line's turns Ctrl-C into a stop.
#pragma once

#include <string_view>

namespace varo::core {

class Progress {
public:
    virtual ~Progress() = default;
    // current out of total, under the caption of the phase.
    virtual void report(long current, long total, std::string_view caption) = 0;
    // True once after a confirmed stop request; clears the request.
    virtual bool stopRequested() = 0;
    // Throws `Cancelled` when a stop was requested.
    void throwIfStopped();
};

// Reports nothing and is never stopped.
class NullProgress final : public Progress {
public:
    void report(long, long, std::string_view) override {}
    bool stopRequested() override { return false; }
};

// The stop flag with read-and-clear semantics, for implementations of `Progress`.
class StopFlag {
public:
    void request() { requested_ = true; }
    bool checkStop() {
        const bool was = requested_;
        requested_ = false;
        return was;
    }
    void clear() { requested_ = false; }

private:
    bool requested_ = false;
};

} // namespace varo::core
