#include "presentation/screens/shared/summary_cards.h"

#include <algorithm>
#include <utility>

#include "presentation/widgets/card_grid.h"
#include "presentation/widgets/summary_card.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

SummaryCards::SummaryCards(const QString& identifier, std::size_t most, QWidget* parent,
                           int narrowest) {
    grid_ = new CardGrid(narrowest, parent);
    for (std::size_t i = 0; i < most; ++i) {
        auto* card = new SummaryCard(QString(), grid_);
        card->setObjectName(u"%1-%2"_s.arg(identifier).arg(i + 1));
        grid_->addCard(card);
        cards_.push_back(card);
    }
}

QWidget* SummaryCards::widget() const {
    return grid_;
}

void SummaryCards::setFrameless() {
    for (SummaryCard* card : cards_) {
        card->setFrameless();
    }
}

void SummaryCards::show(std::vector<SummaryTexts> texts) {
    if (texts == shown_) {
        return;
    }
    shown_ = std::move(texts);
    const std::size_t count = std::min(shown_.size(), cards_.size());
    for (std::size_t i = 0; i < count; ++i) {
        cards_[i]->setTitle(shown_[i].title);
        cards_[i]->setValue(shown_[i].value);
        cards_[i]->setDetail(shown_[i].detail);
    }
    grid_->setShownCount(static_cast<int>(count));
}

}  // namespace tallowcrest
