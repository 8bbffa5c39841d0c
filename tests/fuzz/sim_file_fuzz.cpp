// The SIM-file reader. A description it accepts, once written, must read back to what
// writes the same text again: the first write may round the bias correction to the seven
// digits a single-precision number is printed with, but no later trip may change anything.
#include "core/failure.hpp"
#include "fuzz_input.hpp"
#include "series/simulation_files.hpp"

#include <cstdlib>
#include <optional>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const varo::fuzz::InputFile input(data, size);
    std::optional<varo::series::SimulationDescription> description;
    try {
        description = varo::series::readSimulationDescription(input.path());
    } catch (const varo::core::Failure&) {
        return 0;
    }
    const std::string first = varo::fuzz::scratchPath("first.SIM");
    varo::series::writeSimulationDescription(first, *description);
    const auto written = varo::series::readSimulationDescription(first);
    const std::string second = varo::fuzz::scratchPath("second.SIM");
    varo::series::writeSimulationDescription(second, written);
    if (!(varo::series::readSimulationDescription(second) == written)) {
        std::abort();
    }
    return 0;
}
