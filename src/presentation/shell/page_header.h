#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include <QWidget>

#include "core/routes.h"
#include "presentation/words/commands.h"

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
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

signals:
    /// The owner selected a process here, perhaps the one that was under review already.
    void selectionMade();

private:
    void addRouteActions(AppRoute route);
    void addAction(const Command& command, const QString& identifier, std::function<void()> act);
    void selectTop();
    void selectTopApp();
    void orderActions();
    std::vector<QPushButton*> buttons() const;
    /// Finds out how much room icons and words take together.
    void measure();
    void fold();
    void showIcons(bool areShown);
    /// Emits `selectionMade` when the process that was asked for is the one under review now.
    void tellSelection(std::optional<std::int64_t> wanted);

    SystemMonitor& monitor_;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* subtitle_ = nullptr;
    QHBoxLayout* actions_ = nullptr;
    QPushButton* refresh_ = nullptr;
    int wholeWidth_ = 0;
    bool hasIcons_ = true;
};

}  // namespace tallowcrest
