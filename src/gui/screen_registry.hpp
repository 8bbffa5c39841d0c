// Which work screens the desktop program has, and how each is built. A toolbar key whose
// screen is not here is shown disabled.
#pragma once

#include "gui/screen_widget.hpp"
#include "screens/navigation.hpp"

#include <QString>
#include <functional>
#include <map>

namespace varo::gui {

using ScreenFactory = std::function<ScreenWidget*(ScreenContext&)>;

const std::map<screens::ScreenKey, ScreenFactory>& screenFactories();

// The heading of the user guide's section on a screen; empty for the start of the guide.
QString helpSection(screens::ScreenKey key);

// The screens whose folder picker chooses the folder of the predictor files.
bool picksPredictorFolder(screens::ScreenKey key);

} // namespace varo::gui
