#pragma once

#include <QWidget>

#include "core/routes.h"

class QHBoxLayout;
class QPushButton;

namespace tallowcrest {

class ElidedLabel;
class SystemMonitor;

/// The top of every route: its title, its subtitle, the actions that belong to it, and "Refresh".
/// Main thread.
class PageHeader final : public QWidget {
    Q_OBJECT

public:
    explicit PageHeader(SystemMonitor& monitor, QWidget* parent = nullptr);

    void setRoute(AppRoute route);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void addRouteActions(AppRoute route);
    void addSelectTop(AppRoute route);
    void addActivity(AppRoute route);
    void orderActions();
    QPushButton* addAction(const QString& title, const QString& icon, const QString& identifier,
                           const QString& description);

    SystemMonitor& monitor_;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* subtitle_ = nullptr;
    QHBoxLayout* actions_ = nullptr;
    QPushButton* refresh_ = nullptr;
};

}  // namespace tallowcrest
