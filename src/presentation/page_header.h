#pragma once

#include <cstdint>
#include <optional>

#include <QWidget>

#include "core/routes.h"

class QHBoxLayout;
class QPushButton;

namespace tallowcrest {

class ElidedLabel;
class SystemMonitor;

/// The top of every route: its title, its subtitle, the actions that belong to it, and "Refresh".
/// Where there is no room for both, the words of the actions stay and their icons go. Main thread.
class PageHeader final : public QWidget {
    Q_OBJECT

public:
    explicit PageHeader(SystemMonitor& monitor, QWidget* parent = nullptr);

    void setRoute(AppRoute route);

protected:
    void resizeEvent(QResizeEvent* event) override;

signals:
    /// The owner selected a process here, perhaps the one that was under review already.
    void selectionMade();

private:
    void addRouteActions(AppRoute route);
    void addSelectTop(AppRoute route);
    void addActivity(AppRoute route);
    void addReports(AppRoute route);
    void orderActions();
    void fold();
    /// Emits `selectionMade` when the process that was asked for is the one under review now.
    void tellSelection(std::optional<std::int64_t> wanted);
    QPushButton* addAction(const QString& title, const QString& icon, const QString& identifier,
                           const QString& description);

    SystemMonitor& monitor_;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* subtitle_ = nullptr;
    QHBoxLayout* actions_ = nullptr;
    QPushButton* refresh_ = nullptr;
};

}  // namespace tallowcrest
