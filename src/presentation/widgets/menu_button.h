#pragma once

#include <QPushButton>

#include "presentation/widgets/accessibility.h"

class QMenu;

namespace tallowcrest {

/// A push button that opens a menu below itself. The down arrow opens it, too. Main thread.
class MenuButton final : public QPushButton, public AccessibleButton {
    Q_OBJECT

public:
    MenuButton(const QString& title, const QString& identifier, const QString& description,
               QWidget* parent = nullptr);

    /// For adding actions.
    QMenu& menu() { return *menu_; }

    QAccessible::Role accessibleRole() const override { return QAccessible::ButtonMenu; }
    void addAccessibleState(QAccessible::State& state) const override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void open();

    QMenu* menu_ = nullptr;
};

}  // namespace tallowcrest
