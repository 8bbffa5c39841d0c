// The reader of a summary-statistics results file, which compare results reads back.
#include "core/failure.hpp"
#include "fuzz_input.hpp"
#include "statistics/results_reader.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const varo::fuzz::InputFile input(data, size);
    try {
        varo::statistics::readResultsTable(input.path(), -999.0);
    } catch (const varo::core::Failure&) {
    }
    return 0;
}
