#include "robustness/folder_snapshot.hpp"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace varo::robustness {

namespace {

std::string fileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

std::string linkTarget(const std::string& path) {
    std::string target(4096, '\0');
    const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
    target.resize(length > 0 ? static_cast<size_t>(length) : 0);
    return target;
}

void addTree(const std::string& root, const std::string& relative, FolderSnapshot& snapshot);

void addEntry(const std::string& root, const std::string& relative, FolderSnapshot& snapshot) {
    const std::string path = root + "/" + relative;
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) {
        return;
    }
    EntryState state;
    state.mode = info.st_mode & 07777;
    state.modified =
        static_cast<long long>(info.st_mtim.tv_sec) * 1000000000LL + info.st_mtim.tv_nsec;
    if (S_ISREG(info.st_mode)) {
        state.kind = 'f';
        // A sparse file of tens of megabytes stands for itself by its size.
        state.content =
            info.st_size > (16 << 20) ? "size " + std::to_string(info.st_size) : fileBytes(path);
    } else if (S_ISLNK(info.st_mode)) {
        state.kind = 'l';
        state.content = linkTarget(path);
    } else if (S_ISDIR(info.st_mode)) {
        state.kind = 'd';
        state.modified = 0;
    } else {
        state.kind = 'o';
    }
    snapshot[relative] = state;
    if (state.kind == 'd') {
        addTree(root, relative, snapshot);
    }
}

void addTree(const std::string& root, const std::string& relative, FolderSnapshot& snapshot) {
    const std::string folder = relative.empty() ? root : root + "/" + relative;
    // Read the names first, so that an unreadable folder (a test input) is skipped whole.
    std::vector<std::string> names;
    if (::access(folder.c_str(), R_OK | X_OK) != 0) {
        return;
    }
    std::error_code error;
    for (std::filesystem::directory_iterator it(folder, error), end; !error && it != end;
         it.increment(error)) {
        names.push_back(it->path().filename().string());
    }
    for (const std::string& name : names) {
        addEntry(root, relative.empty() ? name : relative + "/" + name, snapshot);
    }
}

} // namespace

FolderSnapshot snapshotFolder(const std::string& root) {
    FolderSnapshot snapshot;
    addTree(root, "", snapshot);
    return snapshot;
}

std::vector<std::string> differences(const FolderSnapshot& before, const FolderSnapshot& after,
                                     const std::set<std::string>& allowed) {
    std::vector<std::string> found;
    for (const auto& [path, state] : before) {
        if (allowed.count(path) != 0) {
            continue;
        }
        const auto now = after.find(path);
        if (now == after.end()) {
            found.push_back("removed: " + path);
        } else if (now->second.kind != state.kind || now->second.content != state.content ||
                   now->second.mode != state.mode) {
            found.push_back("changed: " + path);
        } else if (now->second.modified != state.modified) {
            found.push_back("touched: " + path);
        }
    }
    for (const auto& [path, state] : after) {
        if (allowed.count(path) == 0 && before.count(path) == 0) {
            found.push_back("added: " + path);
        }
    }
    return found;
}

} // namespace varo::robustness
