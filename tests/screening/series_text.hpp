// Writes a data file of one value a line, in the general form, for the screening tests.
#pragma once

#include "core/number_format.hpp"
#include "support/temp_dir.hpp"

#include <string>
#include <vector>

namespace varo::testing {

inline std::string writeSeries(const TempDir& dir, const std::string& name,
                               const std::vector<double>& values) {
    std::string text;
    for (const double value : values) {
        text += core::generalText(value) + "\r\n";
    }
    return dir.write(name, text);
}

} // namespace varo::testing
