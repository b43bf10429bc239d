#pragma once

#include <utility>
#include <vector>

#include <QElapsedTimer>
#include <QPoint>
#include <QWidget>

#include "core/observable.h"
#include "presentation/shell/menu_bar_entries.h"

class QScrollArea;

namespace tallowcrest {

class Card;
class ElidedLabel;
class MenuBarRow;
class StableLineGraph;

/// The compact panel of the status item: the latest figures, the last minutes and the commands. It
/// closes when it loses the focus, on Escape, and after each command. On a low screen the commands
/// scroll. Main thread.
class MenuBarPanel final : public QWidget {
    Q_OBJECT

public:
    /// The entries come in groups, which are separated by lines.
    MenuBarPanel(SystemMonitor& monitor, const std::vector<std::vector<MenuBarEntry>>& groups);

    /// Shows the panel on the screen of `anchor`, as close to it as possible, or hides it if
    /// visible.
    void toggleAt(const QPoint& anchor);

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void refresh();
    void place();
    QWidget* makeFigures();
    QWidget* makeGraph();
    QWidget* makeRows(const std::vector<std::vector<MenuBarEntry>>& groups);
    QWidget* makeRow(const MenuBarEntry& entry, QWidget* rows);
    /// Resizes to the height of the content, at most that of the screen.
    void fit();
    QRect screenArea() const;
    /// For Down and Up, gives the focus to the next row or the one before, around the ends. False
    /// for any other key.
    bool moveFocusFor(const QKeyEvent& event);
    void dismiss();

    SystemMonitor& monitor_;
    QPoint anchor_;
    QElapsedTimer sinceLeft_;
    QWidget* figures_ = nullptr;
    ElidedLabel* load_ = nullptr;
    ElidedLabel* topGroup_ = nullptr;
    ElidedLabel* latestHeading_ = nullptr;
    ElidedLabel* latest_ = nullptr;
    Card* timeline_ = nullptr;
    StableLineGraph* graph_ = nullptr;
    QScrollArea* commands_ = nullptr;
    std::vector<std::pair<MenuBarRow*, MenuBarEntry>> rows_;
    ObserverGroup changes_;
};

}  // namespace tallowcrest
