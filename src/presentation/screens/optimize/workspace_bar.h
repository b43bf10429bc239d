#pragma once

#include <optional>

#include <QString>
#include <QWidget>

#include "core/routes.h"
#include "presentation/widgets/accessible_figure.h"

namespace tallowcrest {

class SystemMonitor;
class TabStrip;

/// What the step of the workflow that `route` stands for is about. Any thread.
QString workspaceLine(AppRoute route);

/// The four routes of the Optimize workspace as the steps of one workflow. Each page of it carries
/// a bar of its own, on which its own step is selected; a step that is chosen there hands the
/// keyboard on to the bar of the page that then shows. Main thread.
class WorkspaceBar final : public QWidget, public AccessibleFigure {
    Q_OBJECT

public:
    /// `route` is the one of the page.
    WorkspaceBar(SystemMonitor& monitor, AppRoute route, QWidget* parent = nullptr);

    /// Whether a route belongs to the workspace.
    static bool isStep(AppRoute route);

    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }
    /// Its tabs and its line speak for themselves.
    QString accessibleValue() const override { return {}; }

protected:
    void hideEvent(QHideEvent* event) override;

private:
    void makeTabs();
    /// Hands the keyboard on to the bar that shows now.
    void handOver();
    /// Puts the keyboard on the selected tab and the bar into view.
    void takeOver(Qt::FocusReason reason);

    SystemMonitor& monitor_;
    AppRoute route_;
    TabStrip* tabs_ = nullptr;
    /// Set from a choice until its page has taken this one's place.
    std::optional<Qt::FocusReason> handsOver_;
};

}  // namespace tallowcrest
