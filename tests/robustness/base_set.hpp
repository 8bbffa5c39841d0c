// The valid inputs that every hostile case starts from, made once per build: the
// bundled sample data cut to two observed years, models calibrated on them, a run of the
// weather generator and its statistics, each made by the real program. Cases copy the
// texts into their own folders and change them there.
#pragma once

#include <map>
#include <string>

namespace varo::robustness {

struct BaseSet {
    std::string folder;
    long days = 0;             // rows of the observed files, 01/01/1961 to 31/12/1962
    std::string settings;      // the private settings file of every case
    std::string precipitation; // precip.dat
    std::string temperature;   // tmax.dat
    std::map<std::string, std::string> predictors; // observed, by file name
    std::string temperatureModel;   // tmax.PAR: unconditional, on temp, p500 and r850
    std::string precipitationModel; // precip.PAR: conditional with fourth-root amounts
    std::string outFile;            // tmax.OUT, 5 members over the observed years
    std::string simFile;            // tmax.SIM
    std::string results;            // the statistics of tmax.OUT
};

// The predictors of the temperature model, in its order.
inline const char* const TemperaturePredictors[] = {"temp.dat", "p500.dat", "r850.dat"};
// The predictors of the precipitation model, in its order.
inline const char* const PrecipitationPredictors[] = {"p__z.dat", "r850.dat", "mslp.dat",
                                                      "shum.dat"};

const BaseSet& baseSet();

} // namespace varo::robustness
