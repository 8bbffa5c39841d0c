#include "core/output_paths.hpp"

#include <filesystem>

namespace varo::core {

bool sameFile(const std::string& a, const std::string& b) {
    namespace fs = std::filesystem;
    std::error_code error;
    if (fs::exists(a, error) && fs::exists(b, error)) {
        const bool same = fs::equivalent(a, b, error);
        return same && !error;
    }
    const fs::path first = fs::weakly_canonical(a, error);
    if (error) {
        return a == b;
    }
    const fs::path second = fs::weakly_canonical(b, error);
    return error ? a == b : first == second;
}

std::optional<std::string> outputOverInput(const std::vector<std::string>& outputs,
                                           const std::vector<std::string>& inputs) {
    for (const std::string& output : outputs) {
        for (const std::string& input : inputs) {
            if (!output.empty() && !input.empty() && sameFile(output, input)) {
                return "The output file '" + output + "' is the same file as the input file '" +
                       input + "': writing it would destroy the input. Choose another output file.";
            }
        }
    }
    return std::nullopt;
}

} // namespace varo::core
