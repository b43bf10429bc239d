#include "presentation/widgets/menu_button.h"

#include <algorithm>

#include <QAction>
#include <QKeyEvent>
#include <QMenu>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/icon.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

MenuButton::MenuButton(const QString& title, const QString& identifier, const QString& description,
                       QWidget* parent)
    : QPushButton(title, parent), menu_(new QMenu(this)) {
    installAccessibleButtons();
    setObjectName(identifier);
    setAccessibleName(title);
    setExplanation(*this, description);
    setIcon(themedIcon(u"chevron.down"_s));
    setIconSize({spacing::iconSmall, spacing::iconSmall});
    menu_->setObjectName(identifier + u".menu"_s);
    menu_->setAccessibleName(title);
    // Not `QPushButton::setMenu`, which opens the menu on the press of the mouse button and waits
    // within the press until it is closed.
    connect(this, &QPushButton::clicked, this, &MenuButton::open);
}

void MenuButton::addAccessibleState(QAccessible::State& state) const {
    state.hasPopup = true;
}

void MenuButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Down) {
        open();
    } else if (!pressesByReturn(*this, *event)) {
        QPushButton::keyPressEvent(event);
    }
}

void MenuButton::open() {
    menu_->popup(mapToGlobal(QPoint(0, height())));
    const QList<QAction*> entries = menu_->actions();
    const auto first = std::ranges::find_if(
        entries, [](const QAction* each) { return each->isVisible() && each->isEnabled(); });
    if (first != entries.end()) {
        menu_->setActiveAction(*first);
    }
}

}  // namespace tallowcrest
