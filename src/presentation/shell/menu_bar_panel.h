#pragma once

#include <functional>
#include <utility>
#include <vector>

#include <QElapsedTimer>
#include <QPoint>
#include <QWidget>

#include "core/observable.h"
#include "presentation/shell/menu_bar_entries.h"

class QScrollArea;

namespace tallowcrest {

class ElidedLabel;
class MenuBarRow;

/// The compact panel of the status item: the latest figures and the commands. It closes when it
/// loses the focus, on Escape, and after each command. On a low screen the commands scroll. Main
/// thread.
class MenuBarPanel final : public QWidget {
    Q_OBJECT

public:
    MenuBarPanel(SystemMonitor& monitor, std::vector<MenuBarEntry> entries);

    /// Shows the panel on the screen of `anchor`, as close to it as possible, or hides it if
    /// visible.
    void toggleAt(const QPoint& anchor);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void refresh();
    void place();
    QWidget* makeFigures();
    QWidget* makeRows(std::vector<MenuBarEntry> entries);
    /// Resizes to the height of the content, at most that of the screen.
    void fit();
    QRect screenArea() const;
    void dismiss();

    SystemMonitor& monitor_;
    QPoint anchor_;
    QElapsedTimer sinceLeft_;
    QWidget* figures_ = nullptr;
    ElidedLabel* load_ = nullptr;
    ElidedLabel* topGroup_ = nullptr;
    ElidedLabel* latestHeading_ = nullptr;
    ElidedLabel* latest_ = nullptr;
    QScrollArea* commands_ = nullptr;
    /// Each with the function that gives its title.
    std::vector<std::pair<MenuBarRow*, std::function<QString()>>> rows_;
    ObserverGroup changes_;
};

}  // namespace tallowcrest
