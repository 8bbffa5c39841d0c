// A weather-generator run: a parameter file and a folder of predictor files in, an OUT
// file of daily ensemble values and its SIM description out.
//
// The run streams: it holds one day's predictor values and one day's member values, reads
// the predictor files from the record start (once to check them, once to simulate), and
// writes a line to the OUT file per simulated day, so its memory does not grow with the
// length of the run.
//
// A run reads everything it can check before it writes a byte, so that a bad parameter
// row, a short or garbled predictor file or a start after the data leaves the files of an
// earlier run as they were: the generator is seeded (fixed state when RandomSeed is off);
// the whole parameter file is read and, for the inverse normal transformation, the
// reference sample from the calibration's predictand file; every predictor file is opened
// and read through as far as the run will read it; the OUT and SIM paths are checked not
// to be folders. Only then are the SIM and OUT files created, both empty; the predictor
// files are read again from the record start to the first simulated day, and day by day
// the values are simulated and written. The SIM file is written when the OUT file is
// complete.
//
// A failure throws `core::Failure`; one while opening a predictor file names that file
// with the advice to check the predictor folder. A stop request throws `core::Cancelled`.
// Once the files are created, either way the OUT file keeps the days written and the SIM
// file stays empty.
#pragma once

#include "core/dates.hpp"
#include "core/program_state.hpp"
#include "core/progress.hpp"
#include "core/random.hpp"
#include "series/parameter_file.hpp"
#include "weathergen/daily_synthesis.hpp"

#include <functional>
#include <optional>
#include <string>
#include <vector>

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
using HeaderRead = std::function<void(const series::ParameterFile&)>;

// A run in two steps: everything read and checked, then the files written. Between the two
// a screen can refuse the run, for example when an output is one of the inputs.
class SynthesisRun {
public:
    // Reads and checks everything before the first day, as told above; writes nothing. The
    // ensemble size must be 1 to 100.
    SynthesisRun(const SynthesisRequest& request, const core::ProgramState& state,
                 core::Progress& progress, const HeaderRead& headerRead = {});

    // The files the run reads: the parameter file, the predictor files and, for the inverse
    // normal transformation, the calibration's predictand file.
    std::vector<std::string> inputPaths() const;
    // The OUT file and the SIM file beside it.
    std::vector<std::string> outputPaths() const;

    // Creates the SIM and OUT files and simulates the days.
    void writeOutputs(core::Progress& progress);

private:
    void checkPredictorLengths(core::Progress& progress) const;
    // The dates the predictors are read by, for the message of a file that ends too early.
    core::DatesInUse datesInUse() const;

    SynthesisRequest request_;
    const core::ProgramState& state_;
    core::UniformRandom random_;
    series::ParameterFile model_;
    std::optional<ReferenceSample> sample_;
    std::vector<std::string> predictorPaths_;
};

// Both steps at once.
void synthesize(const SynthesisRequest& request, const core::ProgramState& state,
                core::Progress& progress, const HeaderRead& headerRead = {});

// The calibration period of the predictand file, read by walking the record from its start
// with the calendar of `state` up to the calibration's fit start. Fails with 9 when the
// period is longer than a reference sample holds, with 13 when the walk passes the fit
// start without meeting it.
std::vector<double> readReferenceValues(const std::string& predictandPath,
                                        const series::ParameterFile& model,
                                        const core::ProgramState& state);

} // namespace varo::weathergen
