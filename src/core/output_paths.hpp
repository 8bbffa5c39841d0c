// Outputs that would destroy an input.
//
// A run never writes over one of the files it reads. An output path that resolves to the
// same file as an input (the same spelling, another spelling of the same path, a symbolic
// or hard link) is refused before anything is written, with a message that names both.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace varo::core {

// True when both paths name one existing file, or spell the same path once resolved.
bool sameFile(const std::string& a, const std::string& b);

// The refusal of the first output that is one of the inputs, or nothing.
std::optional<std::string> outputOverInput(const std::vector<std::string>& outputs,
                                           const std::vector<std::string>& inputs);

} // namespace varo::core
