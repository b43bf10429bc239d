#pragma once

#include <QStyledItemDelegate>

namespace tallowcrest {

/// Paints the rows of the process table: the protected mark, the row under review, and the
/// "Review" button at the end of each row. Main thread.
class ProcessRowDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    static constexpr int rowHeight = 32;

    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override;

    /// The place of the protected mark after a name of that width: wide enough for lock and word,
    /// or for the lock alone if the word would leave the name too little room.
    static QRect protectedMark(const QRect& cell, int nameWidth);

    /// The row below the pointer, -1 for none.
    void setHoveredRow(int row) { hoveredRow_ = row; }
    int hoveredRow() const { return hoveredRow_; }

    /// Width that the action column needs.
    static int actionWidth();

signals:
    /// The "Review" button of this row was clicked.
    void reviewRequested(const QModelIndex& index);

private:
    int hoveredRow_ = -1;
};

}  // namespace tallowcrest
