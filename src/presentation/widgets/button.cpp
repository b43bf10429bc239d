#include "presentation/widgets/button.h"

#include <QKeyEvent>
#include <QPointer>
#include <QPushButton>
#include <QVariant>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {
namespace {

constexpr const char* primaryProperty = "isPrimary";

/// Of a window: the button that was the last to be disabled while it had the focus.
constexpr const char* waitingProperty = "buttonWaitingForFocus";

/// Return presses it as Space does, on every desktop, and once however long it is held down.
class Button final : public QPushButton {
public:
    using QPushButton::QPushButton;

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (!pressesByReturn(*this, *event)) {
            QPushButton::keyPressEvent(event);
        }
    }
};

}  // namespace

QPushButton* makeButton(const QString& title, const QString& icon, const QString& identifier,
                        const QString& description, QWidget* parent) {
    installAccessibleButtons();
    auto* button = new Button(title, parent);
    button->setObjectName(identifier);
    button->setAccessibleName(title);
    setExplanation(*button, description);
    if (!icon.isEmpty()) {
        button->setIcon(themedIcon(icon));
        button->setIconSize({spacing::iconSmall, spacing::iconSmall});
    }
    return button;
}

bool pressesByReturn(QAbstractButton& button, const QKeyEvent& event) {
    const bool isReturn = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if (isReturn && !event.isAutoRepeat()) {
        button.click();
    }
    return isReturn;
}

void setButtonEnabled(QAbstractButton& button, bool isEnabled) {
    QWidget& window = *button.window();
    const QPointer<QWidget> self(&button);
    if (!isEnabled && window.focusWidget() == &button) {
        button.clearFocus();
        window.setProperty(waitingProperty, QVariant::fromValue(self));
    }
    button.setEnabled(isEnabled);
    if (isEnabled && window.property(waitingProperty).value<QPointer<QWidget>>() == self) {
        window.setProperty(waitingProperty, {});
        if (window.focusWidget() == nullptr && button.isVisible()) {
            button.setFocus();
        }
    }
}

void makePrimary(QPushButton& button, bool isPrimary) {
    if (tallowcrest::isPrimary(&button) != isPrimary) {
        button.setProperty(primaryProperty, isPrimary);
        button.update();
    }
}

bool isPrimary(const QWidget* widget) {
    return widget != nullptr && widget->property(primaryProperty).toBool();
}

}  // namespace tallowcrest
