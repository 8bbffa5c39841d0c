#include "gui/screen_registry.hpp"

#include "gui/quality_widget.hpp"

namespace varo::gui {

const std::map<screens::ScreenKey, ScreenFactory>& screenFactories() {
    using screens::ScreenKey;
    static const std::map<ScreenKey, ScreenFactory> factories = {
        {ScreenKey::Quality, [](ScreenContext& context) { return new QualityWidget(context); }},
    };
    return factories;
}

} // namespace varo::gui
