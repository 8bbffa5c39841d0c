// Reference numbers written by the small scripts beside the test data, which compute them
// independently of the program.
#pragma once

#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace varo::testing {

// Lines "key n1 n2 ..." of a reference file written by a script beside it: the numbers of
// each line, in file order, under the line's first word.
inline std::map<std::string, std::vector<std::vector<double>>>
referenceLines(const std::string& path) {
    std::ifstream in(path);
    std::map<std::string, std::vector<std::vector<double>>> all;
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream words(line);
        std::string key;
        words >> key;
        std::vector<double>& numbers = all[key].emplace_back();
        for (double value = 0; words >> value;) {
            numbers.push_back(value);
        }
    }
    return all;
}

} // namespace varo::testing
