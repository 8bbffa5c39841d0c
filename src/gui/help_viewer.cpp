#include "gui/help_viewer.hpp"

#include <QFile>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace varo::gui {

HelpViewer::HelpViewer(QWidget* parent) : QDialog(parent) {
    setWindowTitle("VARO Help");
    setObjectName("HelpViewer");
    resize(900, 700);
    auto* layout = new QVBoxLayout(this);
    auto* browser = new QTextBrowser(this);
    browser->setOpenExternalLinks(true);
    browser->setSearchPaths({":/help"});
    QFile guide(":/help/user-guide.md");
    if (guide.open(QIODevice::ReadOnly)) {
        browser->setMarkdown(QString::fromUtf8(guide.readAll()));
    }
    layout->addWidget(browser);
}

} // namespace varo::gui
