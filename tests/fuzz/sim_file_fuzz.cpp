// The SIM-file reader. A description it accepts must survive being written and read
// again unchanged.
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
    const std::string copy = varo::fuzz::scratchPath("copy.SIM");
    varo::series::writeSimulationDescription(copy, *description);
    const auto again = varo::series::readSimulationDescription(copy);
    if (!(again == *description)) {
        std::abort();
    }
    return 0;
}
