// The amount treatment with and without the conditional flag: dry days and missing days are
// left alone on a conditional series, every value but the missing ones changes on an
// unconditional one.
#include "scenario/amount.hpp"
#include "scenario_test_support.hpp"

#include <gtest/gtest.h>

using namespace varo;

TEST(AmountTreatment, FactorOrAdditionOnTheValuesTheScopeTreats) {
    const std::vector<double> before = {0.0, 0.1, 0.2, 5.0, -999.0, -2.0, 12.5};
    struct Case {
        scenario::AmountKind kind;
        float factor;
        double addition;
        bool conditional;
        std::vector<double> after;
    };
    const float plus20 = (20.0f + 100.0f) / 100.0f; // 1.2 in single precision
    const double f = plus20;
    const std::vector<Case> cases = {
        // Conditional, threshold 0.1: 0.1 itself is dry, a dry 0 stays 0.
        {scenario::AmountKind::Factor,
         plus20,
         0,
         true,
         {0.0, 0.1, 0.2 * f, 5.0 * f, -999.0, -2.0, 12.5 * f}},
        {scenario::AmountKind::Addition, 1, 1.5, true, {0.0, 0.1, 1.7, 6.5, -999.0, -2.0, 14.0}},
        {scenario::AmountKind::Factor,
         plus20,
         0,
         false,
         {0.0, 0.1 * f, 0.2 * f, 5.0 * f, -999.0, -2.0 * f, 12.5 * f}},
        {scenario::AmountKind::Addition,
         1,
         -1.5,
         false,
         {-1.5, 0.1 - 1.5, 0.2 - 1.5, 3.5, -999.0, -3.5, 11.0}},
    };
    for (const Case& c : cases) {
        auto data = varo::testing::scenarioOf({before, before});
        core::NullProgress progress;
        scenario::applyAmount(data, {c.kind, c.factor, c.addition}, {0.1, -999.0, c.conditional},
                              progress);
        EXPECT_EQ(data.members[0], c.after);
        EXPECT_EQ(data.members[1], c.after);
    }
    // The factor is single precision: 1.2f is not 1.2.
    EXPECT_NE(5.0 * f, 6.0);
}
