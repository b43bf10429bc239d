#pragma once

#include <vector>

#include <QWidget>

namespace tallowcrest {

/// Cards in rows of equal width, as many beside each other as there is room for. The rows are
/// filled evenly: four cards in room for three stand two by two. Main thread.
class CardGrid final : public QWidget {
    Q_OBJECT

public:
    /// A card never gets narrower than `cardWidth` beside another one.
    explicit CardGrid(int cardWidth, QWidget* parent = nullptr);

    void addCard(QWidget* card);
    /// Shows only the first `count` cards.
    void setShownCount(int count);

    /// How many of `count` cards stand beside each other in `width`, at least 1.
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
    /// As tall as the tallest card of the row that begins with the card `first`.
    int rowHeight(int first, const Columns& columns) const;
    void arrange();

    std::vector<QWidget*> cards_;
    int cardWidth_;
    int shown_ = 0;
};

}  // namespace tallowcrest
