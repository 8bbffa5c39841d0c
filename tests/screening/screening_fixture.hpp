// Set-up shared by the screening tests: data files of one value a line in the general form,
// written to a folder of the test's own, and requests over them or over the reference files
// of tests/data/screening.
#pragma once

#include "core/dates.hpp"
#include "core/number_format.hpp"
#include "core/program_state.hpp"
#include "core/progress.hpp"
#include "screening/screening_data.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace varo::testing {

inline const std::string ScreeningData = std::string(VARO_TEST_DATA) + "/screening/";

struct ScreeningFixture : ::testing::Test {
    core::ProgramState state;
    core::NullProgress progress;
    TempDir dir;
    ScreeningFixture() { core::initialiseState(state); }

    std::string file(const std::string& name, const std::vector<double>& values) const {
        std::string text;
        for (const double value : values) {
            text += core::generalText(value) + "\r\n";
        }
        return dir.write(name, text);
    }

    // A file whose value on each day is the day's number, counted from 1.
    std::string dayNumbers(const std::string& name, int days) const {
        std::vector<double> values;
        for (int day = 1; day <= days; ++day) {
            values.push_back(day);
        }
        return file(name, values);
    }

    // From `fitStart` (1 January 1961 unless given) for `days` days.
    static screening::ScreeningRequest request(const std::string& predictand,
                                               std::vector<std::string> predictors, long days,
                                               core::Date fitStart = {1, 1, 1961}) {
        screening::ScreeningRequest asked;
        asked.predictandPath = predictand;
        asked.predictorPaths = std::move(predictors);
        asked.fitStart = fitStart;
        asked.fitEnd = core::dateFromSerial(core::serialDay(fitStart) + days - 1);
        return asked;
    }

    // The predictand and three predictors of tests/data/screening over 1961 to 1963.
    static screening::ScreeningRequest referenceRequest() {
        std::vector<std::string> predictors;
        for (const char* name : {"p1_mslp.dat", "p2_p500.dat", "p3_rhum.dat"}) {
            predictors.push_back(ScreeningData + name);
        }
        return request(ScreeningData + "predictand.dat", predictors, 365 + 365 + 365);
    }
};

} // namespace varo::testing
