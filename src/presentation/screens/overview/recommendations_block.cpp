#include "presentation/screens/overview/recommendations_block.h"

#include <algorithm>
#include <utility>

#include <QVBoxLayout>

#include "presentation/screens/shared/recommendation_row.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

RecommendationsBlock::RecommendationsBlock()
    : OverviewBlock(DashboardSection::recommendations, u"overview.recommendations"_s,
                    u"arrow.forward.circle.fill"_s,
                    dashboard_text::text(title(DashboardSection::recommendations))) {
    const auto makeRow = [this](RecommendationRow::Size size, std::size_t place, QWidget* parent) {
        auto* row = new RecommendationRow(
            size, u"overview.recommendation-%1.review"_s.arg(place + 1), parent);
        connect(row, &RecommendationRow::reviewWanted, this, &RecommendationsBlock::reviewWanted);
        return row;
    };
    first_ = makeRow(RecommendationRow::Size::prominent, 0, body());
    bodyLayout()->addWidget(first_);
    others_ = new QWidget(body());
    others_->hide();
    auto* list = new QVBoxLayout(others_);
    list->setContentsMargins(0, 0, 0, 0);
    list->setSpacing(0);
    for (std::size_t i = 1; i < mostRecommendations; ++i) {
        RecommendationRow* row = makeRow(RecommendationRow::Size::compact, i, others_);
        row->hide();
        list->addWidget(row);
        rows_.push_back(row);
    }
    list->addStretch(1);
    bodyLayout()->addWidget(others_);
}

void RecommendationsBlock::show(std::vector<RecommendationLine> lines,
                                std::optional<Date> sampledAt) {
    lines_ = std::move(lines);
    if (lines_.size() > mostRecommendations) {
        lines_.resize(mostRecommendations);
    }
    showNote();
    if (isCollapsed()) {
        return;
    }
    if (sampledAt) {
        room_.setNeeded(lines_.empty() ? 0 : static_cast<int>(lines_.size()) - 1,
                        sampledAt->secondsSinceReference);
        first_->countSample(*sampledAt);
    }
    showFirst(sampledAt.has_value());
    showOthers();
}

void RecommendationsBlock::showNote() {
    // A collapsed section still shows the most severe recommendation.
    if (isCollapsed() && !lines_.empty()) {
        header()->setNote(recommendationNote(lines_), severityColor(lines_.front().severity));
    } else {
        header()->setNote(QString());
    }
}

void RecommendationsBlock::showFirst(bool hasSample) {
    if (!lines_.empty()) {
        first_->setLine(lines_.front());
    } else if (!hasSample) {
        first_->setMessage(u"hourglass"_s, u"Sampling this Mac..."_s,
                           u"The first recommendation follows the first sample."_s);
    } else {
        first_->setMessage(u"info.circle"_s, u"No recommendation for this sample"_s,
                           u"Refresh takes a new one."_s);
    }
}

void RecommendationsBlock::showOthers() {
    const std::size_t shown = lines_.empty() ? 0 : lines_.size() - 1;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (i < shown) {
            rows_[i]->setLine(lines_[i + 1]);
        }
        rows_[i]->setVisible(i < shown);
    }
    fitOthers();
}

void RecommendationsBlock::fitOthers() {
    const int shown = lines_.empty() ? 0 : static_cast<int>(lines_.size()) - 1;
    const int rowHeight = RecommendationRow::compactHeight(width() - 2 * spacing::cardPadding);
    const int height = std::max(room_.count(), shown) * rowHeight;
    if (others_->minimumHeight() != height) {
        others_->setFixedHeight(height);
    }
    others_->setVisible(height > 0);
}

void RecommendationsBlock::resizeEvent(QResizeEvent* event) {
    OverviewBlock::resizeEvent(event);
    fitOthers();
}

}  // namespace tallowcrest
