// The uniform random numbers of the weather and scenario generators.
//
// A small fast generator (PCG32) whose output is a single-precision number in [0, 1)
// with 24 random bits. A run seeds it once: from the clock when the RandomSeed setting is
// on, or to one fixed state when it is off, so that such runs repeat exactly. Draws are
// taken in exactly the order the generators state; nothing else draws from the stream.
#pragma once

#include <cstdint>

namespace varo::core {

class UniformRandom {
public:
    UniformRandom() { resetToFixedState(); }

    void resetToFixedState() { seed(FixedSeed); }
    void seedFromClock();
    void seed(std::uint64_t seedValue);

    // Next number in [0, 1), a multiple of 2^-24.
    float next() { return static_cast<float>(nextBits() >> 8) * (1.0f / 16777216.0f); }

    // Fixed when randomSeed is off, from the clock when it is on.
    void seedForRun(bool randomSeed) {
        if (randomSeed) {
            seedFromClock();
        } else {
            resetToFixedState();
        }
    }

private:
    static constexpr std::uint64_t FixedSeed = 1;
    static constexpr std::uint64_t Multiplier = 6364136223846793005ULL;
    static constexpr std::uint64_t Increment = 1442695040888963407ULL;

    std::uint32_t nextBits() {
        const std::uint64_t old = state_;
        state_ = old * Multiplier + Increment;
        const auto xorShifted = static_cast<std::uint32_t>(((old >> 18U) ^ old) >> 27U);
        const auto rotation = static_cast<std::uint32_t>(old >> 59U);
        return (xorShifted >> rotation) | (xorShifted << ((32U - rotation) & 31U));
    }

    std::uint64_t state_ = 0;
};

} // namespace varo::core
