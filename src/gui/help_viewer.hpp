// The help viewer: the user guide, built into the program, in a browsable window that
// opens at the section of the screen it was asked from.
#pragma once

#include <QDialog>

class QTextBrowser;

namespace varo::gui {

class HelpViewer : public QDialog {
    Q_OBJECT
public:
    // `section` is the text of a heading of the guide, such as "Quality control"; the
    // viewer opens with that heading at the top, or at the start of the guide when the
    // guide has no such heading.
    explicit HelpViewer(QWidget* parent = nullptr, const QString& section = {});

    QTextBrowser* browser() const { return browser_; }
    // Brings the section's heading to the top; false when the guide has no such heading.
    bool showSection(const QString& section);

protected:
    void showEvent(QShowEvent* event) override;

private:
    QTextBrowser* browser_;
    QString section_;
};

} // namespace varo::gui
