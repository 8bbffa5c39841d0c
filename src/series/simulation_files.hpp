// The files a weather-generator run leaves: the OUT file of daily values, one line a day
// and one 14-character zone per ensemble member, and the SIM file beside it that
// describes the run, which later screens read to learn the ensemble size, year length
// and dates of the OUT file.
#pragma once

#include "core/series_file.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace varo::series {

struct SimulationDescription {
    std::int16_t predictorCount = 0;
    std::int16_t seasonCode = 0;
    std::int16_t yearIndicator = 366; // 366, 365 or 360
    std::string fitStart;             // dd/mm/yyyy
    std::int32_t fitLength = 0;       // days
    bool conditional = false;
    std::int16_t ensembleSize = 1;
    std::int16_t precN = 12;
    std::int16_t transformCode = 1;
    float biasCorrection = 1.0f;
    std::string predictandName;
    std::vector<std::string> predictorNames;
    friend bool operator==(const SimulationDescription&, const SimulationDescription&) = default;
};

// The SIM path of an OUT path: its last three characters replaced by "SIM".
std::string simPathFor(const std::string& outPath);

// Writes the twelve items and the predictor names, one a line, numbers with the printed
// blanks, the flag as "#TRUE#"/"#FALSE#", text bare.
void writeSimulationDescription(core::TextFileWriter& file,
                                const SimulationDescription& description);
void writeSimulationDescription(const std::string& path, const SimulationDescription& description);

// Reads a SIM file; a missing file, a short file or an item that is not what its line
// should hold fails with a `core::Failure` naming the file and line.
SimulationDescription readSimulationDescription(const std::string& path);

// One OUT line: each value by "#####0.000" padded to the next 14-character zone.
void appendDayLine(std::string& line, const double* values, int count);
void writeDayLine(core::TextFileWriter& file, const double* values, int count);

} // namespace varo::series
