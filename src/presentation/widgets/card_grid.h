#pragma once

#include <vector>

#include <QWidget>

namespace tallowcrest {

/// Cards of equal width in rows, as many per row as fit. The rows are filled evenly: where three
/// fit in a row, four cards make two rows of two. Main thread.
class CardGrid final : public QWidget {
    Q_OBJECT

public:
    /// Cards in a row of several are at least `cardWidth` wide.
    explicit CardGrid(int cardWidth, QWidget* parent = nullptr);

    void addCard(QWidget* card);
    /// Shows only the first `count` cards.
    void setShownCount(int count);

    /// How many of `count` cards a row of that width holds, at least 1.
    static int columnsFor(int count, int width, int cardWidth);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    /// The width of one card.
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Columns {
        int count = 1;
        int width = 0;
    };
    Columns columnsWithin(int width) const;
    /// The height of the tallest card of the row that begins with the card `first`.
    int rowHeight(int first, const Columns& columns) const;
    void arrange();

    std::vector<QWidget*> cards_;
    int cardWidth_;
    int shown_ = 0;
};

}  // namespace tallowcrest
