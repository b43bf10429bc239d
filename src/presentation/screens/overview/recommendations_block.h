#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "presentation/screens/shared/overview_block.h"
#include "presentation/widgets/reserved_rows.h"
#include "presentation/words/recommendation_lines.h"

namespace tallowcrest {

class RecommendationRow;

/// The recommendations: the first one prominently, the others as compact rows. Main thread.
class RecommendationsBlock final : public OverviewBlock {
    Q_OBJECT

public:
    /// As many as one sample can give.
    static constexpr std::size_t mostRecommendations = 5;

    RecommendationsBlock();

    /// `lines` come most severe first; those beyond the maximum are left out. `sampledAt` is absent
    /// before the first sample.
    void show(std::vector<RecommendationLine> lines, std::optional<Date> sampledAt);

signals:
    /// The owner pressed "Review" on a recommendation.
    void reviewWanted(std::int64_t pid);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void showNote();
    void showFirst(bool hasSample);
    void showOthers();
    void fitOthers();

    std::vector<RecommendationLine> lines_;
    RecommendationRow* first_ = nullptr;
    QWidget* others_ = nullptr;
    std::vector<RecommendationRow*> rows_;  ///< within `others_`
    ReservedRows room_;                     ///< rows within `others_`
};

}  // namespace tallowcrest
