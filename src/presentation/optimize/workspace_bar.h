#pragma once

#include <optional>
#include <vector>

#include <QAbstractButton>
#include <QString>
#include <QWidget>

#include "core/routes.h"
#include "presentation/accessible_figure.h"

namespace tallowcrest {

class SystemMonitor;

/// What the step of the workflow that `route` stands for is about. Any thread.
QString workspaceLine(AppRoute route);

/// One step of the workspace bar. To assistive technology it is a tab. Main thread.
class WorkspaceTab final : public QAbstractButton {
    Q_OBJECT

public:
    WorkspaceTab(AppRoute route, const QString& title, const QString& identifier, QWidget* parent);

    AppRoute route() const { return route_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

signals:
    /// An arrow key asks for the tab so many places further on.
    void neighborWanted(int places);

protected:
    void enterEvent(QEnterEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    /// Which tab is selected follows from the page that it stands on, never from a click.
    void nextCheckState() override {}
    void paintEvent(QPaintEvent* event) override;

private:
    AppRoute route_;
    bool hasKeyboardFocus_ = false;
};

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
    QWidget* makeTabs();
    void choose(AppRoute route, Qt::FocusReason reason);
    void chooseNeighbor(int places);
    /// Hands the keyboard on to the bar that shows now.
    void handOver();
    /// Puts the keyboard on the selected tab and the bar into view.
    void takeOver(Qt::FocusReason reason);

    SystemMonitor& monitor_;
    AppRoute route_;
    std::vector<WorkspaceTab*> tabs_;
    /// Set from a choice until its page has taken this one's place.
    std::optional<Qt::FocusReason> handsOver_;
};

}  // namespace tallowcrest
