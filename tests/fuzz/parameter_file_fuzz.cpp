// The parameter-file reader, which the weather generator runs a model from and its screen
// shows the header from. A model it accepts must read back unchanged after writing.
#include "core/failure.hpp"
#include "fuzz_input.hpp"
#include "series/parameter_file.hpp"

#include <cstdlib>
#include <optional>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const varo::fuzz::InputFile input(data, size);
    try {
        varo::series::readParameterHeader(input.path());
    } catch (const varo::core::Failure&) {
    }
    std::optional<varo::series::ParameterFile> model;
    try {
        model = varo::series::readParameterFile(input.path());
    } catch (const varo::core::Failure&) {
        return 0;
    }
    const std::string copy = varo::fuzz::scratchPath("copy.PAR");
    varo::series::writeParameterFile(copy, *model);
    const auto again = varo::series::readParameterFile(copy);
    if (varo::series::parameterFileText(again) != varo::series::parameterFileText(*model)) {
        std::abort();
    }
    return 0;
}
