#include "presentation/widgets/button.h"

#include <QPushButton>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {
namespace {

constexpr const char* primaryProperty = "isPrimary";

}  // namespace

QPushButton* makeButton(const QString& title, const QString& icon, const QString& identifier,
                        const QString& description, QWidget* parent) {
    installAccessibleButtons();
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

void makePrimary(QPushButton& button) {
    button.setProperty(primaryProperty, true);
}

bool isPrimary(const QWidget* widget) {
    return widget != nullptr && widget->property(primaryProperty).toBool();
}

}  // namespace tallowcrest
