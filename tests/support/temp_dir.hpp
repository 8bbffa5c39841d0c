// A folder of its own for each test, removed afterwards, with small file helpers.
#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

namespace varo::testing {

class TempDir {
public:
    TempDir() {
        std::random_device device;
        path_ = std::filesystem::temp_directory_path() /
                ("varo-test-" + std::to_string(device()) + std::to_string(device()));
        std::filesystem::create_directories(path_);
    }
    ~TempDir() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    std::string path(const std::string& name) const { return (path_ / name).string(); }
    std::string folder() const { return path_.string(); }

    std::string write(const std::string& name, const std::string& content) const {
        const std::string full = path(name);
        std::ofstream out(full, std::ios::binary);
        out << content;
        return full;
    }

private:
    std::filesystem::path path_;
};

inline std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream content;
    content << in.rdbuf();
    return content.str();
}

inline bool fileExists(const std::string& path) {
    return std::filesystem::exists(path);
}

} // namespace varo::testing
