#include "presentation/widgets/gauge_row.h"

#include <QGridLayout>

#include "presentation/widgets/theme.h"

namespace tallowcrest {

GaugeRow::GaugeRow(QWidget* parent) : QWidget(parent), grid_(new QGridLayout(this)) {
    grid_->setContentsMargins(0, 0, 0, 0);
    grid_->setSpacing(spacing::gap);
}

void GaugeRow::setCards(const std::vector<QWidget*>& cards, int lastCardWidth) {
    cards_ = cards;
    lastCardWidth_ = lastCardWidth;
    arrange(false);
}

void GaugeRow::arrange(bool isWrapped) {
    isWrapped_ = isWrapped;
    const auto count = static_cast<int>(cards_.size());
    for (int column = 0; column < count; ++column) {
        QWidget* card = cards_[static_cast<std::size_t>(column)];
        const bool isBelow = isWrapped && column == count - 1;
        grid_->removeWidget(card);
        grid_->addWidget(card, isBelow ? 1 : 0, isBelow ? 0 : column, 1, isBelow ? count - 1 : 1);
        grid_->setColumnStretch(column, isBelow ? 0 : 1);
    }
    updateGeometry();
}

QSize GaugeRow::minimumSizeHint() const {
    int width = -spacing::gap;
    for (std::size_t i = 0; i + 1 < cards_.size(); ++i) {
        width += cards_[i]->minimumSizeHint().expandedTo(cards_[i]->minimumSize()).width() +
                 spacing::gap;
    }
    return {width, QWidget::minimumSizeHint().height()};
}

void GaugeRow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const bool isShort = width() < minimumSizeHint().width() + spacing::gap + lastCardWidth_;
    if (isShort != isWrapped_) {
        arrange(isShort);
    }
}

}  // namespace tallowcrest
