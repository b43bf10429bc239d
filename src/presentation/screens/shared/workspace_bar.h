#pragma once

#include <optional>

#include <QString>
#include <QWidget>

#include "core/routes.h"
#include "presentation/widgets/accessibility.h"

namespace tallowcrest {

class TabStrip;

/// What a step of the workflow is for; a general sentence for a route that is not a step. Any
/// thread.
QString workspaceLine(AppRoute route);

/// The four routes of the Optimize workspace as the steps of one workflow. Each of its pages has
/// its own bar, on which its step is selected. After a step is chosen, the keyboard focus moves to
/// the bar of the page that then shows. Main thread.
class WorkspaceBar final : public QWidget, public AccessibleFigure {
    Q_OBJECT

public:
    /// `route` is that of the page.
    explicit WorkspaceBar(AppRoute route, QWidget* parent = nullptr);

    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }
    /// Empty: the tabs and the line describe themselves.
    QString accessibleValue() const override { return {}; }

signals:
    /// The owner chose the step of another route.
    void routeWanted(AppRoute route);

protected:
    void hideEvent(QHideEvent* event) override;

private:
    void makeTabs();
    /// Gives the focus to the bar of the page that is now visible.
    void passFocus();
    /// Focuses the selected tab and scrolls the bar into view.
    void takeFocus(Qt::FocusReason reason);

    AppRoute route_;
    TabStrip* tabs_ = nullptr;
    /// Why the other bar gets the focus. Set from the choice of a step until its page is visible.
    std::optional<Qt::FocusReason> focusToPass_;
};

}  // namespace tallowcrest
