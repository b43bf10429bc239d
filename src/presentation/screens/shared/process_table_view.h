#pragma once

#include <optional>
#include <utility>

#include <QItemSelection>
#include <QPersistentModelIndex>
#include <QPoint>
#include <QTableView>
#include <QWidgetItem>

namespace tallowcrest {

class ProcessRowDelegate;

/// The process table: rows without a grid, and a hint when there are no rows. Main thread.
class ProcessTableView final : public QTableView {
    Q_OBJECT

public:
    explicit ProcessTableView(QWidget* parent = nullptr);

    void setModel(QAbstractItemModel* model) override;
    /// Empty while the table is hidden.
    QRect visualRect(const QModelIndex& index) const override;

    /// The height of the header and that many rows.
    int heightOfRows(int rows) const;
    /// The largest height up to `height` at which the last visible row is not cut; `height` when
    /// not even one row fits.
    int wholeRowsHeight(int height) const;

    /// The first and the last row that are at least partly visible; the last one is before the
    /// first when there are none.
    std::pair<int, int> rowsInView() const;

    /// -1 when there is none, or when the pointer is outside.
    int rowBelowPointer() const { return pointer_ ? rowAt(pointer_->y()) : -1; }

    /// Whether a mouse button is down that was pressed on a row.
    bool isPressed() const { return isPressed_; }

    /// The second line of the hint that shows when there are no rows.
    void setEmptyDetail(const QString& detail);

signals:
    /// The owner clicked "Review" on this row, or pressed Return or Space on it.
    void reviewRequested(const QModelIndex& index);
    /// Other rows may be visible: the view was scrolled or resized.
    void viewMoved();
    /// The columns have new places or widths.
    void columnsSized();
    /// The owner moved the pointer over the rows, or pressed a key or a mouse button on them.
    void touched();
    void pointerLeft();

protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void showEvent(QShowEvent* event) override;
    /// A click or a key selects nothing: rows are put under review. Only assistive technology
    /// selects cells, and `reviewSelected` takes that for the same wish.
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override;
    bool viewportEvent(QEvent* event) override;

private:
    /// Reports the current row to assistive technology, which Qt does only when it changes.
    void reportFocusedRow();
    void sizeColumns();
    void applyTheme();
    /// Highlights the row below the pointer. `place` is in viewport coordinates, absent while the
    /// pointer is outside.
    void followPointer(std::optional<QPoint> place);
    void updateRow(int row);
    void reviewSelected(const QItemSelection& selected);

    ProcessRowDelegate* delegate_ = nullptr;
    std::optional<QPoint> pointer_;
    QPersistentModelIndex currentWhileHidden_;
    bool isPressed_ = false;
    QString emptyDetail_;
};

/// The layout item of a table: reduces its height to whole rows and leaves the rest empty.
class WholeRowsItem final : public QWidgetItem {
public:
    explicit WholeRowsItem(ProcessTableView* table) : QWidgetItem(table), table_(table) {}

    void setGeometry(const QRect& place) override;

private:
    ProcessTableView* table_;
};

}  // namespace tallowcrest
