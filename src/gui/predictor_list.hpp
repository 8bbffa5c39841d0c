// The predictor picker of a screen on the desktop: the folder key ("Dir2") with the folder
// beside it ("Dir2Text"), the folder's files ("File2", with their descriptions from the
// predictor table when asked) and the count selected ("NoOfFiles"), bound to a screen
// record's `screens::PredictorPicker`. A new folder is listed at once; a change of the
// selection goes to the screen through `select`, which passes it on to the record.
#pragma once

#include "gui/screen_context.hpp"
#include "screens/predictor_picker.hpp"

#include <QWidget>
#include <functional>
#include <vector>

class QLabel;
class QTreeWidget;

namespace varo::gui {

class PredictorList : public QWidget {
    Q_OBJECT
public:
    using Select = std::function<void(const std::vector<size_t>& items)>;

    PredictorList(ScreenContext& context, screens::PredictorPicker& picker, bool describe,
                  Select select, QWidget* parent);

    // Shows the picker's folder, its files and the selection.
    void showPicker();

private:
    void showCount();

    ScreenContext& context_;
    screens::PredictorPicker& picker_;
    bool describe_;
    Select select_;
    QLabel* folder_;
    QTreeWidget* files_;
    QLabel* count_;
};

} // namespace varo::gui
