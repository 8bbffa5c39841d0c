// The bundled sample data set, made by a small documented generator rather than copied
// from anywhere: eight large-scale predictors with seasonal cycles, day-to-day persistence
// and cross-correlation; a station's daily precipitation whose occurrence and amounts
// depend on the predictors; a station's daily maximum temperature that is a known linear
// function of three predictors plus noise; and the predictors as a climate model delivers
// them, on a 360-day calendar from 1961 to 2099, with a documented climate shift from 2000
// on. The same seed always gives the same files, byte for byte.
#pragma once

#include "core/dates.hpp"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace varo::sampledata {

// Predictor codes of the sample set, in the order of the latent series.
inline constexpr std::array<const char*, 8> PredictorCodes = {"mslp", "p500", "p__z", "p8_u",
                                                              "r850", "shum", "temp", "s850"};

// Predictor files hold normalised values, as large-scale predictors usually are: each
// variable less its 1961-1990 mean, over its 1961-1990 standard deviation, so that model
// coefficients of three decimals keep their precision. The seasonal cycle stays in.
//
// The known relation of the temperature series, with the predictors as the files hold them:
//   tmax = TmaxIntercept + TmaxOnTemp * temp + TmaxOnP500 * p500 + TmaxOnR850 * r850 + noise
// in deg C, the noise normal with standard deviation TmaxNoise.
inline constexpr double TmaxIntercept = 13.5;
inline constexpr double TmaxOnTemp = 4.5;
inline constexpr double TmaxOnP500 = 0.8;
inline constexpr double TmaxOnR850 = -0.6;
inline constexpr double TmaxNoise = 1.5;

struct SampleOptions {
    int firstYear = 1961;
    int lastYear = 1990;
    int futureFirstYear = 1961;
    int futureLastYear = 2099;
    std::uint64_t seed = 19610101;
    double missingCode = -999.0;
};

struct SampleFiles {
    std::string precipitation;               // station precipitation, mm/day
    std::string maximumTemperature;          // station daily maximum temperature, deg C
    std::string predictorFolder;             // observed predictors, Gregorian calendar
    std::string futureFolder;                // climate-model predictors, 360-day calendar
    std::vector<std::string> predictorFiles; // names, the same in both folders
    std::vector<int> missingDays;            // 0-based rows marked missing in the station files
    long days = 0;                           // rows of the observed files
    long futureDays = 0;                     // rows of the future files
};

// The predictor file name of a code: "<code>.dat".
std::string predictorFileName(const std::string& code);

// Writes the whole set into `folder` (created when missing): precip.dat and tmax.dat, the
// observed predictors in predictors/, the climate model's in future/. Throws core::Failure
// when a file cannot be written.
SampleFiles writeSampleData(const std::string& folder, const SampleOptions& options = {});

// The climate shift of the climate model's predictors at a year, in the variable's own
// units (deg C, g/kg, hPa...), before normalising: warming, moistening and a small
// pressure fall that grow linearly from 2000 and are zero before.
double futureShift(const std::string& code, int year);

} // namespace varo::sampledata
