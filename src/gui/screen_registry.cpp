#include "gui/screen_registry.hpp"

#include "gui/quality_widget.hpp"
#include "gui/synthesize_widget.hpp"

namespace varo::gui {

const std::map<screens::ScreenKey, ScreenFactory>& screenFactories() {
    using screens::ScreenKey;
    static const std::map<ScreenKey, ScreenFactory> factories = {
        {ScreenKey::Quality, [](ScreenContext& context) { return new QualityWidget(context); }},
        {ScreenKey::WeatherGen,
         [](ScreenContext& context) { return new SynthesizeWidget(context); }},
    };
    return factories;
}

} // namespace varo::gui
