// The uniform random numbers of the weather and scenario generators.
//
// A small fast generator (PCG32) whose output is a single-precision number in [0, 1)
// with 24 random bits. A run seeds it once: from the clock when the RandomSeed setting is
// on, or to one fixed state when it is off, so that such runs repeat exactly. Draws are
// taken in exactly the order the generators state; nothing else draws from the stream.
#pragma once

#include <cstddef>
#include <cstdint>

namespace varo::core {

class UniformRandom {
public:
    UniformRandom() { resetToFixedState(); }

    void resetToFixedState() { seed(FixedSeed); }
    void seedFromClock();
    void seed(std::uint64_t seedValue);

    // Next number in [0, 1), a multiple of 2^-24.
    float next() {
        const std::uint64_t old = state_;
        state_ = old * Multiplier + Increment;
        return output(old);
    }

    // The next `count` numbers, exactly as `count` calls of next() give them. Two
    // interleaved steps of the state make a block of draws about twice as fast.
    void fill(float* out, std::size_t count) {
        std::uint64_t even = state_;
        std::uint64_t odd = even * Multiplier + Increment;
        std::size_t i = 0;
        for (; i + 1 < count; i += 2) {
            out[i] = output(even);
            out[i + 1] = output(odd);
            even = even * DoubleMultiplier + DoubleIncrement;
            odd = odd * DoubleMultiplier + DoubleIncrement;
        }
        if (i < count) {
            out[i] = output(even);
            even = odd;
        }
        state_ = even;
    }

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
    // Two steps at once: s * M^2 + (M + 1) * I.
    static constexpr std::uint64_t DoubleMultiplier = Multiplier * Multiplier;
    static constexpr std::uint64_t DoubleIncrement = (Multiplier + 1) * Increment;

    // The output of the state before a step: 32 bits by xorshift and rotation, of which
    // the top 24 make the number.
    static float output(std::uint64_t old) {
        const auto xorShifted = static_cast<std::uint32_t>(((old >> 18U) ^ old) >> 27U);
        const auto rotation = static_cast<std::uint32_t>(old >> 59U);
        const std::uint32_t bits =
            (xorShifted >> rotation) | (xorShifted << ((32U - rotation) & 31U));
        return static_cast<float>(bits >> 8) * (1.0f / 16777216.0f);
    }

    void step() { state_ = state_ * Multiplier + Increment; }

    std::uint64_t state_ = 0;
};

} // namespace varo::core
