#include "core/random.hpp"

#include <chrono>

namespace varo::core {

void UniformRandom::seed(std::uint64_t seedValue) {
    state_ = 0;
    step();
    state_ += seedValue;
    step();
}

void UniformRandom::seedFromClock() {
    const auto now = std::chrono::high_resolution_clock::now().time_since_epoch().count();
    seed(static_cast<std::uint64_t>(now));
}

} // namespace varo::core
