#pragma once

#include <functional>
#include <vector>

#include <QWidget>

#include "core/outcome.h"
#include "core/routes.h"
#include "presentation/words/commands.h"

class QHBoxLayout;
class QPushButton;

namespace tallowcrest {

class ElidedLabel;
class SystemMonitor;
struct WindowState;

/// The top of every route: its title, its subtitle, its actions, and "Refresh". In a narrow window
/// the actions lose their icons and keep their words. Main thread.
class PageHeader final : public QWidget {
    Q_OBJECT

public:
    explicit PageHeader(SystemMonitor& monitor, WindowState& state, QWidget* parent = nullptr);

    void setRoute(AppRoute route);

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

signals:
    /// The owner selected a process here, possibly the one already under review.
    void selectionMade();

private:
    void addRouteActions(AppRoute route);
    void addAction(const Command& command, const QString& identifier, std::function<void()> act);
    void orderActions();
    std::vector<QPushButton*> buttons() const;
    /// Measures the width that icons and words need together.
    void measure();
    void fold();
    void showIcons(bool areShown);
    /// Emits `selectionMade` if `wanted` is now the process under review.
    void tellSelection(const Outcome& outcome);

    SystemMonitor& monitor_;
    WindowState& state_;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* subtitle_ = nullptr;
    QHBoxLayout* actions_ = nullptr;
    QPushButton* refresh_ = nullptr;
    int wholeWidth_ = 0;
    bool hasIcons_ = true;
};

}  // namespace tallowcrest
