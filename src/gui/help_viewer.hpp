// The help viewer: the user guide, built into the program, in a browsable window.
#pragma once

#include <QDialog>

namespace varo::gui {

class HelpViewer : public QDialog {
    Q_OBJECT
public:
    explicit HelpViewer(QWidget* parent = nullptr);
};

} // namespace varo::gui
