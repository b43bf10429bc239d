#pragma once

#include <QTableView>

namespace tallowcrest {

/// The process table as a person sees it: rows without a grid, a hint in place of no rows, and
/// Return or Space on a row for its "Review". Main thread.
class ProcessTableView final : public QTableView {
    Q_OBJECT

public:
    explicit ProcessTableView(QWidget* parent = nullptr);

    void setModel(QAbstractItemModel* model) override;

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

private:
    void sizeColumns();
    void applyTheme();

    QString emptyDetail_;
};

}  // namespace tallowcrest
