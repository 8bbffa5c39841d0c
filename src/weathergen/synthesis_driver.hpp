// A weather-generator run: a parameter file and a folder of predictor files in, an OUT
// file of daily ensemble values and its SIM description out.
//
// The run streams: it holds one day's predictor values and one day's member values, reads
// each predictor file once from the record start, and writes a line to the OUT file per
// simulated day, so its memory does not grow with the length of the run.
//
// Order of a run: the generator is seeded (fixed state when RandomSeed is off); the
// parameter file's header is read; the predictor files are opened from the folder; the
// SIM and OUT files are created, both empty; the model rows are read; for the inverse
// normal transformation the reference sample is read from the calibration's predictand
// file; the predictor files are advanced from the record start to the first simulated
// day; then day by day the values are simulated and written. The SIM file is written
// when the OUT file is complete.
//
// A failure throws `core::Failure`; one while opening a predictor file names that file
// with the advice to check the predictor folder. A stop request throws `core::Cancelled`.
// Either way the OUT file keeps the days written and the SIM file stays empty.
#pragma once

#include "core/dates.hpp"
#include "core/program_state.hpp"
#include "core/progress.hpp"
#include "weathergen/synthesis_model.hpp"

#include <functional>
#include <string>

namespace varo::weathergen {

inline constexpr std::string_view SynthesisCaption = "Synthesizing Data";
inline constexpr std::string_view PredictorAdvice =
    ".  Check Predictor Directory is set correctly and/or file exists in archive.";

struct SynthesisRequest {
    std::string parameterPath;
    std::string predictorFolder;
    std::string outPath;
    core::Date start; // the first simulated day
    long days = 0;    // how many days to simulate
    int ensembleSize = 20;
};

// Called once the header has been read, so that a screen can show what the run uses.
using HeaderRead = std::function<void(const ParameterHeader&)>;

// Runs the synthesis with the settings of `state`. The ensemble size must be 1 to 100.
void synthesize(const SynthesisRequest& request, const core::ProgramState& state,
                core::Progress& progress, const HeaderRead& headerRead = {});

// The calibration period of the predictand file, read by walking the record from its start
// with the calendar of `state` up to the calibration's fit start. Fails with 9 when the
// period is longer than a reference sample holds, with 13 when the walk passes the fit
// start without meeting it.
std::vector<double> readReferenceValues(const std::string& predictandPath,
                                        const ParameterHeader& header,
                                        const core::ProgramState& state);

} // namespace varo::weathergen
