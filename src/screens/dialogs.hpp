// The one way a screen talks to a person: message boxes, yes/no questions and file
// pickers. The desktop program shows real boxes; the command line prints messages and
// answers questions from its options; tests script the answers and read the messages.
#pragma once

#include "core/notices.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varo::screens {

enum class Icon { Information, Warning, Error, Question, Exclamation };

inline constexpr std::string_view ErrorTitle = "Error Message";

class Dialogs {
public:
    virtual ~Dialogs() = default;

    virtual void message(std::string_view title, std::string_view text, Icon icon) = 0;
    virtual bool askYesNo(std::string_view title, std::string_view text, Icon icon) = 0;
    // Filters are in the form "All Files (*.*)|*.*|DAT Files (*.DAT)|*.DAT".
    virtual std::optional<std::string> pickOpenFile(std::string_view filter,
                                                    std::string_view startFolder) = 0;
    virtual std::optional<std::string> pickSaveFile(std::string_view filter,
                                                    std::string_view startFolder,
                                                    std::string_view defaultExtension) = 0;
    virtual std::optional<std::string> pickFolder(std::string_view startFolder) = 0;

    // A box titled "Error Message" with a stop icon.
    void error(std::string_view text) { message(ErrorTitle, text, Icon::Error); }
};

// Passes a run's warnings on to the person through `Dialogs`.
class DialogNotifier final : public core::Notifier {
public:
    explicit DialogNotifier(Dialogs& dialogs) : dialogs_(dialogs) {}
    void warning(std::string_view title, std::string_view text) override {
        dialogs_.message(title, text, Icon::Warning);
    }
    void information(std::string_view title, std::string_view text) override {
        dialogs_.message(title, text, Icon::Information);
    }
    void error(std::string_view text) override { dialogs_.error(text); }

private:
    Dialogs& dialogs_;
};

} // namespace varo::screens
