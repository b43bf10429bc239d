#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "presentation/screens/overview/overview_block.h"
#include "presentation/screens/overview/overview_lines.h"

namespace tallowcrest {

class RecommendationRow;

/// Whether anything needs attention and what to do first. Main thread.
class RecommendationsBlock final : public OverviewBlock {
    Q_OBJECT

public:
    /// As many as one sample can give.
    static constexpr std::size_t mostRecommendations = 5;

    RecommendationsBlock();

    /// `sampledAt` is absent before the first sample.
    void show(std::vector<RecommendationLine> lines, std::optional<Date> sampledAt);

signals:
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
    KeptRoom room_;                         ///< rows within `others_`
};

}  // namespace tallowcrest
