#include "presentation/widgets/controls.h"

#include <QPushButton>

#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {

QPushButton* makeButton(const QString& title, const QString& icon, const QString& identifier,
                        const QString& description, QWidget* parent) {
    auto* button = new QPushButton(title, parent);
    button->setObjectName(identifier);
    button->setAccessibleName(title);
    button->setAccessibleDescription(description);
    button->setToolTip(description);
    if (!icon.isEmpty()) {
        button->setIcon(themedIcon(icon));
        button->setIconSize({spacing::iconSmall, spacing::iconSmall});
    }
    return button;
}

QPushButton* makeButton(const Command& command, const QString& identifier, QWidget* parent) {
    return makeButton(QString::fromUtf8(command.title), QString::fromUtf8(command.icon), identifier,
                      QString::fromUtf8(command.description), parent);
}

}  // namespace tallowcrest
