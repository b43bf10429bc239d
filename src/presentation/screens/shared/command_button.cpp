#include "presentation/screens/shared/command_button.h"

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/danger_button.h"

namespace tallowcrest {

QPushButton* makeButton(const Command& command, const QString& identifier, QWidget* parent) {
    return makeButton(QString::fromUtf8(command.title), QString::fromUtf8(command.icon), identifier,
                      QString::fromUtf8(command.description), parent);
}

DangerButton* makeDangerButton(const Command& command, const QString& identifier, QWidget* parent) {
    auto* button = new DangerButton(parent);
    button->setObjectName(identifier);
    button->setTitle(QString::fromUtf8(command.title));
    const QString description = QString::fromUtf8(command.description);
    setExplanation(*button, description);
    return button;
}

}  // namespace tallowcrest
