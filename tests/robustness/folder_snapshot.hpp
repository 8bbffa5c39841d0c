// What a folder tree holds at one moment: every entry with its kind, its bytes (files), its
// target (symbolic links) and its modification time to the nanosecond. Two snapshots of the
// same tree compare entry by entry, so that a run which changed, replaced, touched, added
// or removed anything is caught, whatever it wrote.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

namespace varo::robustness {

struct EntryState {
    char kind = '?';        // 'f' file, 'd' folder, 'l' symbolic link, 'o' other
    std::string content;    // the bytes of a file, the target of a link
    long long modified = 0; // nanoseconds; not compared for folders
    unsigned mode = 0;
    friend bool operator==(const EntryState&, const EntryState&) = default;
};

using FolderSnapshot = std::map<std::string, EntryState>; // by path relative to the root

FolderSnapshot snapshotFolder(const std::string& root);

// One line for each entry that differs, ignoring the entries named in `allowed` (paths
// relative to the root): "changed: x", "added: x", "removed: x", "touched: x".
std::vector<std::string> differences(const FolderSnapshot& before, const FolderSnapshot& after,
                                     const std::set<std::string>& allowed = {});

} // namespace varo::robustness
