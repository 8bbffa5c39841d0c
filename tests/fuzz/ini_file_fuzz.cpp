// The settings-file reader and writer: every key read as the start of the program reads
// it, and a key written into a copy of the bytes reads back as written.
#include "core/ini_file.hpp"
#include "core/program_state.hpp"
#include "core/settings.hpp"
#include "fuzz_input.hpp"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>

namespace {

bool namesAnotherFile(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text.find("inifile") != std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const varo::fuzz::InputFile input(data, size);
    using varo::core::SettingsSection;
    for (const varo::core::SettingKey& key : varo::core::settingsTable()) {
        varo::core::readProfileString(input.path(), SettingsSection, key.name, "Missing",
                                      key.buffer);
    }
    // A redirection could name any file of the machine; the bytes alone are read here.
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (!namesAnotherFile(text)) {
        varo::core::ProgramState state;
        varo::core::initialiseState(state);
        state.settingsFile = input.path();
        varo::core::loadStartupSettings(state);
    }
    const std::string copy = varo::fuzz::scratchPath("copy.INI");
    std::ofstream(copy, std::ios::binary | std::ios::trunc) << text;
    if (varo::core::writeProfileString(copy, SettingsSection, "Thresh", "0.5") &&
        varo::core::readProfileString(copy, SettingsSection, "Thresh", "Missing", 30) != "0.5") {
        std::abort();
    }
    return 0;
}
