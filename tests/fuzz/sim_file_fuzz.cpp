// The SIM-file reader. A description it accepts, once written, must read back to what
// writes the same text again: the first write may round the bias correction to the seven
// digits a single-precision number is printed with, but no later trip may change anything.
#include "core/failure.hpp"
#include "fuzz_input.hpp"
#include "weathergen/simulation_files.hpp"

#include <cstdlib>
#include <optional>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const varo::fuzz::InputFile input(data, size);
    std::optional<varo::weathergen::SimulationDescription> description;
    try {
        description = varo::weathergen::readSimulationDescription(input.path());
    } catch (const varo::core::Failure&) {
        return 0;
    }
    const std::string first = varo::fuzz::scratchPath("first.SIM");
    varo::weathergen::writeSimulationDescription(first, *description);
    const auto written = varo::weathergen::readSimulationDescription(first);
    const std::string second = varo::fuzz::scratchPath("second.SIM");
    varo::weathergen::writeSimulationDescription(second, written);
    if (!(varo::weathergen::readSimulationDescription(second) == written)) {
        std::abort();
    }
    return 0;
}
