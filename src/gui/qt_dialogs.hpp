// Message boxes and file pickers of the desktop program.
#pragma once

#include "screens/dialogs.hpp"

class QString;
class QWidget;

namespace varo::gui {

class QtDialogs final : public screens::Dialogs {
public:
    explicit QtDialogs(QWidget* parent) : parent_(parent) {}
    void setParent(QWidget* parent) { parent_ = parent; }

    void message(std::string_view title, std::string_view text, screens::Icon icon) override;
    bool askYesNo(std::string_view title, std::string_view text, screens::Icon icon) override;
    std::optional<std::string> pickOpenFile(std::string_view filter,
                                            std::string_view startFolder) override;
    std::optional<std::string> pickSaveFile(std::string_view filter, std::string_view startFolder,
                                            std::string_view defaultExtension) override;
    std::optional<std::string> pickFolder(std::string_view startFolder) override;

private:
    QWidget* parent_;
};

// "All Files (*.*)|*.*|DAT Files (*.DAT)|*.DAT" as Qt's "All Files (*);;DAT Files (*.DAT *.dat)":
// on this platform file names are case-sensitive, so both cases of an extension are offered.
QString qtFileFilter(std::string_view filter);

} // namespace varo::gui
