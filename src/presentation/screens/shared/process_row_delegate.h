#pragma once

#include <QRect>
#include <QStyledItemDelegate>

namespace tallowcrest {

/// Paints the rows of the process table: the protected mark, the row under review, and the
/// "Review" button at the end of each row. Main thread.
class ProcessRowDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    static constexpr int rowHeight = 24;

    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override;

    /// The place of the protected mark after a name of that width: wide enough for lock and word,
    /// or for the lock alone if the word would leave the name too little room.
    static QRect protectedMark(const QRect& cell, int nameWidth);

    /// The parts of a cell of the process column, from left to right.
    struct NameCell {
        QRect name;
        QRect mark;  ///< null for a process that is not protected
        QRect note;  ///< has room for `keptNote`, unless the cell is too narrow for both
    };
    /// For a name of the width `nameWidth`; `keptNote` is the width of the part of the note that is
    /// shown even beside a long name.
    static NameCell nameCell(const QRect& cell, int nameWidth, int keptNote, bool isProtected);

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
