// The opening screen: the program's name, the splash box and the Start and Exit keys.
#pragma once

#include "screens/navigation.hpp"

#include <QWidget>

class QCheckBox;

namespace varo::gui {

class IntroWidget : public QWidget {
    Q_OBJECT
public:
    IntroWidget(core::ProgramState& state, QWidget* parent = nullptr);

signals:
    void started();
    void exitRequested();

private:
    screens::IntroScreen record_;
    QCheckBox* splash_;
};

// The hub's home page: what the program does and the order of the work.
class HomeWidget : public QWidget {
    Q_OBJECT
public:
    explicit HomeWidget(QWidget* parent = nullptr);
};

} // namespace varo::gui
