// varo-gui [--settings FILE] [--screen KEY --screenshot FILE.png]
#include "gui/app.hpp"

#include <QApplication>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    return varo::gui::runDesktop(app);
}
