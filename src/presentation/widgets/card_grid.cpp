#include "presentation/widgets/card_grid.h"

#include <algorithm>

#include <QEvent>
#include <QLayout>

#include "presentation/widgets/theme.h"

namespace tallowcrest {

// The cards are placed here and not by a grid layout, which could give its height only for its
// present number of columns and not for that of another width.
CardGrid::CardGrid(int cardWidth, QWidget* parent) : QWidget(parent), cardWidth_(cardWidth) {
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void CardGrid::addCard(QWidget* card) {
    card->setParent(this);
    card->hide();
    cards_.push_back(card);
}

void CardGrid::setShownCount(int count) {
    if (count == shown_) {
        return;
    }
    shown_ = std::min(count, static_cast<int>(cards_.size()));
    for (std::size_t i = 0; i < cards_.size(); ++i) {
        cards_[i]->setVisible(i < static_cast<std::size_t>(shown_));
    }
    updateGeometry();
    arrange();
}

int CardGrid::columnsFor(int count, int width, int cardWidth) {
    const int fitting = std::max(1, (width + spacing::gap) / (cardWidth + spacing::gap));
    const int rows = std::max(1, (count + fitting - 1) / fitting);
    return std::max(1, (count + rows - 1) / rows);
}

CardGrid::Columns CardGrid::columnsWithin(int width) const {
    const int count = columnsFor(shown_, width, cardWidth_);
    return {count, (width - (count - 1) * spacing::gap) / count};
}

int CardGrid::rowHeight(int first, const Columns& columns) const {
    int height = 0;
    for (int i = first; i < std::min(first + columns.count, shown_); ++i) {
        const QWidget* card = cards_[static_cast<std::size_t>(i)];
        const QLayout* layout = card->layout();
        height = std::max(height, layout != nullptr && layout->hasHeightForWidth()
                                      ? layout->totalHeightForWidth(columns.width)
                                      : card->sizeHint().height());
    }
    return height;
}

int CardGrid::heightForWidth(int width) const {
    const Columns columns = columnsWithin(width);
    int height = 0;
    for (int first = 0; first < shown_; first += columns.count) {
        height += rowHeight(first, columns) + (first > 0 ? spacing::gap : 0);
    }
    return height;
}

QSize CardGrid::sizeHint() const {
    const int width = shown_ * (cardWidth_ + spacing::gap) - spacing::gap;
    return {std::max(cardWidth_, width), heightForWidth(std::max(cardWidth_, width))};
}

QSize CardGrid::minimumSizeHint() const {
    return {cardWidth_, 0};
}

bool CardGrid::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) {
        updateGeometry();
        arrange();
    }
    return QWidget::event(event);
}

void CardGrid::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrange();
}

void CardGrid::arrange() {
    const Columns columns = columnsWithin(width());
    int top = 0;
    for (int first = 0; first < shown_; first += columns.count) {
        const int height = rowHeight(first, columns);
        for (int i = first; i < std::min(first + columns.count, shown_); ++i) {
            const int left = (i - first) * (columns.width + spacing::gap);
            cards_[static_cast<std::size_t>(i)]->setGeometry(left, top, columns.width, height);
        }
        top += height + spacing::gap;
    }
}

}  // namespace tallowcrest
