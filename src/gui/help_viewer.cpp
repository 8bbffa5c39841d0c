#include "gui/help_viewer.hpp"

#include <QFile>
#include <QTextBrowser>
#include <QVBoxLayout>

// The guide is compiled into a static library, whose resources a program must ask for.
static void loadHelpResource() {
    Q_INIT_RESOURCE(help);
}

namespace varo::gui {

HelpViewer::HelpViewer(QWidget* parent) : QDialog(parent) {
    loadHelpResource();
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
