#pragma once

#include <optional>

#include <QString>
#include <QWidget>

#include "core/routes.h"
#include "presentation/widgets/accessible_figure.h"

namespace tallowcrest {

class TabStrip;

/// One sentence on what a step of the workflow is for. Any thread.
QString workspaceLine(AppRoute route);

/// The four routes of the Optimize workspace as the steps of one workflow. Each of its pages has
/// its own bar, on which its step is selected. After a step is chosen, the keyboard focus moves to
/// the bar of the page that then shows. Main thread.
class WorkspaceBar final : public QWidget, public AccessibleFigure {
    Q_OBJECT

public:
    /// `route` is the one of the page.
    explicit WorkspaceBar(AppRoute route, QWidget* parent = nullptr);

    /// Whether a route belongs to the workspace.
    static bool isStep(AppRoute route);

    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }
    /// Its tabs and its line have names of their own.
    QString accessibleValue() const override { return {}; }

signals:
    void routeWanted(AppRoute route);

protected:
    void hideEvent(QHideEvent* event) override;

private:
    void makeTabs();
    /// Gives the focus to the bar that shows now.
    void handOver();
    /// Focuses the selected tab and scrolls the bar into view.
    void takeOver(Qt::FocusReason reason);

    AppRoute route_;
    TabStrip* tabs_ = nullptr;
    /// Set from a choice until the chosen page has replaced this one.
    std::optional<Qt::FocusReason> handsOver_;
};

}  // namespace tallowcrest
