#include "gui/widget_helpers.hpp"

#include <QButtonGroup>
#include <QRadioButton>

namespace varo::gui {

QPushButton* keyButton(const QString& caption, const QString& name, QWidget* parent) {
    QPushButton* key = namedButton(caption, name, parent);
    key->setFocusPolicy(Qt::NoFocus);
    key->setAutoDefault(false);
    return key;
}

QButtonGroup* optionGroup(QWidget* parent, QLayout* into, const QString& name,
                          const QStringList& captions, const std::function<void(int)>& picked) {
    auto* group = new QButtonGroup(parent);
    for (int id = 0; id < captions.size(); ++id) {
        auto* option = new QRadioButton(captions[id], parent);
        option->setObjectName(name + QString::number(id));
        group->addButton(option, id);
        into->addWidget(option);
    }
    QObject::connect(group, &QButtonGroup::idClicked, parent, picked);
    return group;
}

void selectOption(QButtonGroup* group, int id) {
    if (QAbstractButton* option = group->button(id)) {
        option->setChecked(true);
        return;
    }
    group->setExclusive(false);
    for (QAbstractButton* each : group->buttons()) {
        each->setChecked(false);
    }
    group->setExclusive(true);
}

} // namespace varo::gui
