// The reader of an analysis period: an OUT file of one to four members read line by line
// and field by field, or a single series read free-format. The first byte chooses the
// number of members.
#include "core/failure.hpp"
#include "core/progress.hpp"
#include "fuzz_input.hpp"
#include "series/period_reader.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const varo::fuzz::InputFile input(data + 1, size - 1);
    varo::series::DataSource source;
    source.path = input.path();
    source.memberCount = data[0] % 4 + 1;
    source.recordStart = {1, 1, 1961};
    varo::core::NullProgress progress;
    try {
        varo::series::readPeriod(source, {1, 1, 1961}, {10, 1, 1961}, progress);
    } catch (const varo::core::Failure&) {
    }
    return 0;
}
