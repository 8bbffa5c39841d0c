#include "core/random.hpp"

#include <gtest/gtest.h>

using namespace varo::core;

TEST(UniformRandom, FixedStateRepeatsItsSequence) {
    UniformRandom first;
    UniformRandom second;
    second.next();
    second.resetToFixedState();
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(first.next(), second.next());
    }
}

TEST(UniformRandom, NumbersLieInHalfOpenUnitIntervalWithUniformMean) {
    UniformRandom random;
    double sum = 0.0;
    const int draws = 200000;
    for (int i = 0; i < draws; ++i) {
        const float u = random.next();
        ASSERT_GE(u, 0.0f);
        ASSERT_LT(u, 1.0f);
        sum += u;
    }
    // The mean of n uniforms has a standard deviation of sqrt(1/12n), about 0.00065 here.
    EXPECT_NEAR(sum / draws, 0.5, 0.003);
}

TEST(UniformRandom, ClockSeedsDiffer) {
    UniformRandom a;
    UniformRandom b;
    a.seedFromClock();
    b.seed(12345);
    EXPECT_NE(a.next(), b.next());
}

TEST(UniformRandom, FillGivesTheSameStreamAsSingleDraws) {
    UniformRandom single;
    UniformRandom block;
    float values[1001];
    for (const size_t count : {0u, 1u, 2u, 3u, 1000u, 1001u, 7u}) {
        block.fill(values, count);
        for (size_t i = 0; i < count; ++i) {
            ASSERT_EQ(values[i], single.next()) << count << " " << i;
        }
        // The stream goes on from where the block ended.
        ASSERT_EQ(block.next(), single.next()) << count;
    }
}
