#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "presentation/widgets/card.h"
#include "presentation/words/recommendation_lines.h"

namespace tallowcrest {

class RecommendationRow;
class SelectableText;

/// The latest analysis and the recommendations of the latest sample. Main thread.
class AdviceCard final : public Card {
    Q_OBJECT

public:
    /// As many as one sample can give.
    static constexpr std::size_t mostRecommendations = 5;

    explicit AdviceCard(QWidget* parent = nullptr);

    /// `lines` come most severe first; those beyond the maximum are left out.
    void show(const std::string& insight, const std::vector<RecommendationLine>& lines);

signals:
    /// The owner pressed "Review" on a recommendation.
    void reviewWanted(std::int64_t pid);

private:
    SelectableText* insight_ = nullptr;
    std::string shownInsight_;
    std::vector<RecommendationRow*> rows_;
};

}  // namespace tallowcrest
