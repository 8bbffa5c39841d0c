// Which work screens the desktop program has, and how each is built. A toolbar key whose
// screen is not here is shown disabled.
#pragma once

#include "gui/screen_widget.hpp"
#include "screens/navigation.hpp"

#include <functional>
#include <map>

namespace varo::gui {

using ScreenFactory = std::function<ScreenWidget*(ScreenContext&)>;

const std::map<screens::ScreenKey, ScreenFactory>& screenFactories();

} // namespace varo::gui
