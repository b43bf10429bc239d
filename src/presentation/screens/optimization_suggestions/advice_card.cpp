#include "presentation/screens/optimization_suggestions/advice_card.h"

#include <QVBoxLayout>

#include "presentation/screens/shared/recommendation_row.h"
#include "presentation/widgets/selectable_text.h"
#include "presentation/words/advisor_words.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

AdviceCard::AdviceCard(QWidget* parent) : Card(parent) {
    setObjectName(u"suggestions.advice"_s);
    setHeader(u"checklist.checked"_s, u"Overall Optimization Advice"_s);
    setCaption(u"Live recommendations across CPU, memory, disk, and automation."_s);
    insight_ = new SelectableText(u"suggestions.insight"_s, this);
    contentLayout()->addWidget(insight_);
    for (std::size_t i = 0; i < mostRecommendations; ++i) {
        auto* row =
            new RecommendationRow(RecommendationRow::Size::prominent,
                                  u"suggestions.recommendation-%1.review"_s.arg(i + 1), this);
        row->hide();
        connect(row, &RecommendationRow::reviewWanted, this, &AdviceCard::reviewWanted);
        contentLayout()->addWidget(row);
        rows_.push_back(row);
    }
}

void AdviceCard::show(const std::string& insight, const std::vector<RecommendationLine>& lines) {
    if (insight != shownInsight_) {
        shownInsight_ = insight;
        insight_->showText(advisor_words::longText(insight));
    }
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const bool isShown = i < lines.size();
        if (isShown) {
            rows_[i]->setLine(lines[i]);
        }
        rows_[i]->setVisible(isShown);
    }
}

}  // namespace tallowcrest
