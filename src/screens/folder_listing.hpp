// The files a predictor list shows: the regular files of a folder, hidden ones left out,
// sorted by name without regard to case. A folder that cannot be read lists nothing.
#pragma once

#include <string>
#include <vector>

namespace varo::screens {

std::vector<std::string> folderDataFiles(const std::string& folder);

} // namespace varo::screens
