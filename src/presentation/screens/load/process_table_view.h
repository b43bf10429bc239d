#pragma once

#include <optional>

#include <QPoint>
#include <QTableView>
#include <QWidgetItem>

namespace tallowcrest {

class ProcessRowDelegate;

/// The process table as a person sees it: rows without a grid, a hint in place of no rows, and
/// Return or Space on a row for its "Review". Main thread.
class ProcessTableView final : public QTableView {
    Q_OBJECT

public:
    explicit ProcessTableView(QWidget* parent = nullptr);

    void setModel(QAbstractItemModel* model) override;

    /// The greatest height within `height` at which the last row that shows is a whole one.
    int wholeRowsHeight(int height) const;

    /// The second line of the hint that stands in place of no rows.
    void setEmptyDetail(const QString& detail);

signals:
    void reviewRequested(const QModelIndex& index);

protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    bool viewportEvent(QEvent* event) override;

private:
    void sizeColumns();
    void applyTheme();
    /// The row that the pointer is over; `place` is in the viewport, absent when it is not there.
    void followPointer(std::optional<QPoint> place);
    void updateRow(int row);

    ProcessRowDelegate* delegate_ = nullptr;
    std::optional<QPoint> pointer_;
    QString emptyDetail_;
};

/// Gives a table's place in a layout to whole rows; what is left stays free below them.
class WholeRowsItem final : public QWidgetItem {
public:
    explicit WholeRowsItem(ProcessTableView* table) : QWidgetItem(table), table_(table) {}

    void setGeometry(const QRect& place) override;

private:
    ProcessTableView* table_;
};

}  // namespace tallowcrest
