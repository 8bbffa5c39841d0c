// The data-file reader: free-format numbers to the end, and the same bytes as lines cut
// into 14-character fields, as ensemble files are read.
#include "core/failure.hpp"
#include "core/series_file.hpp"
#include "fuzz_input.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const varo::fuzz::InputFile input(data, size);
    try {
        varo::core::SeriesReader numbers(input.path());
        while (!numbers.atEnd()) {
            numbers.readNumber();
        }
    } catch (const varo::core::Failure&) {
    }
    try {
        varo::core::SeriesReader lines(input.path());
        while (!lines.atEnd()) {
            const std::string line = lines.readLine();
            for (int k = 1; k <= 4; ++k) {
                double value = 0.0;
                varo::core::zoneProblem(line, k, value);
            }
        }
    } catch (const varo::core::Failure&) {
    }
    return 0;
}
