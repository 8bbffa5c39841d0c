#include "core/progress.hpp"

#include "core/failure.hpp"

namespace varo::core {

void Progress::throwIfStopped() {
    if (stopRequested()) {
        throw Cancelled();
    }
}

} // namespace varo::core
