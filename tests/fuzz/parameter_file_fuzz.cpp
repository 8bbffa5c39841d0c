// The parameter-file readers: the calibration's, which the screens use to show a model,
// and the weather generator's, which runs it.
#include "calibration/parameter_file.hpp"
#include "core/failure.hpp"
#include "fuzz_input.hpp"
#include "weathergen/synthesis_model.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const varo::fuzz::InputFile input(data, size);
    try {
        varo::calibration::readParameterFile(input.path());
    } catch (const varo::core::Failure&) {
    }
    try {
        varo::weathergen::readSynthesisModel(input.path());
    } catch (const varo::core::Failure&) {
    }
    return 0;
}
