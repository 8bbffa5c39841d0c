#include "gui/screen_registry.hpp"

#include "gui/analyse_widget.hpp"
#include "gui/calibrate_widget.hpp"
#include "gui/compare_widget.hpp"
#include "gui/generate_widget.hpp"
#include "gui/quality_widget.hpp"
#include "gui/screen_vars_widget.hpp"
#include "gui/synthesize_widget.hpp"
#include "gui/transform_widget.hpp"

namespace varo::gui {

const std::map<screens::ScreenKey, ScreenFactory>& screenFactories() {
    using screens::ScreenKey;
    static const std::map<ScreenKey, ScreenFactory> factories = {
        {ScreenKey::Quality, [](ScreenContext& context) { return new QualityWidget(context); }},
        {ScreenKey::Transform, [](ScreenContext& context) { return new TransformWidget(context); }},
        {ScreenKey::Screen, [](ScreenContext& context) { return new ScreenVarsWidget(context); }},
        {ScreenKey::Calibrate, [](ScreenContext& context) { return new CalibrateWidget(context); }},
        {ScreenKey::WeatherGen,
         [](ScreenContext& context) { return new SynthesizeWidget(context); }},
        {ScreenKey::AnalyseData, [](ScreenContext& context) { return new AnalyseWidget(context); }},
        {ScreenKey::Generate, [](ScreenContext& context) { return new GenerateWidget(context); }},
        {ScreenKey::Compare, [](ScreenContext& context) { return new CompareWidget(context); }},
    };
    return factories;
}

QString helpSection(screens::ScreenKey key) {
    using screens::ScreenKey;
    static const std::map<ScreenKey, QString> sections = {
        {ScreenKey::Quality, "Quality control"},
        {ScreenKey::Transform, "Transform"},
        {ScreenKey::Screen, "Screening"},
        {ScreenKey::Calibrate, "Calibration"},
        {ScreenKey::WeatherGen, "Weather generator"},
        {ScreenKey::AnalyseData, "Summary statistics"},
        {ScreenKey::Generate, "Scenario generator"},
        {ScreenKey::Compare, "Compare results"},
    };
    const auto found = sections.find(key);
    return found == sections.end() ? QString() : found->second;
}

bool picksPredictorFolder(screens::ScreenKey key) {
    using screens::ScreenKey;
    return key == ScreenKey::Screen || key == ScreenKey::Calibrate || key == ScreenKey::WeatherGen;
}

} // namespace varo::gui
