#pragma once

#include <vector>

#include <QAbstractButton>
#include <QWidget>

#include "core/routes.h"
#include "presentation/widgets/accessibility.h"

class QButtonGroup;

namespace tallowcrest {

/// One route of the sidebar: its icon and title, or the icon alone while folded. Main thread.
class SidebarRow final : public QAbstractButton {
    Q_OBJECT

public:
    SidebarRow(AppRoute route, QWidget* parent);

    void setFolded(bool folded);
    /// Also when the window is not active; the focus ring then goes with the focus.
    void takeFocusFrom(const SidebarRow& other);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void enterEvent(QEnterEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString symbol_;
    bool isFolded_ = false;
    bool hasRing_ = false;
};

/// The routes in their order. Arrow keys move between them. Main thread.
class Sidebar final : public QWidget, public AccessibleFigure {
    Q_OBJECT

public:
    explicit Sidebar(QWidget* parent = nullptr);

    void setSelectedRoute(AppRoute route);
    /// Folded, the sidebar shows only icons.
    void setFolded(bool folded);

    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }
    /// Empty: the rows report which of them is selected.
    QString accessibleValue() const override { return {}; }

signals:
    void routeChosen(AppRoute route);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QButtonGroup* group_ = nullptr;
    std::vector<SidebarRow*> rows_;
    bool isFolded_ = false;
};

}  // namespace tallowcrest
