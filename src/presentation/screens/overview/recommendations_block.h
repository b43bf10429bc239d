#pragma once

#include <cstdint>
#include <vector>

#include "presentation/screens/overview/kept_room.h"
#include "presentation/screens/overview/overview_block.h"
#include "presentation/screens/overview/recommendation_lines.h"

namespace tallowcrest {

class RecommendationRow;

/// Whether anything needs attention and what to do first. Main thread.
class RecommendationsBlock final : public OverviewBlock {
    Q_OBJECT

public:
    /// As many as one sample can give.
    static constexpr std::size_t mostRecommendations = 5;

    explicit RecommendationsBlock(SystemMonitor& monitor);

protected:
    void showHeader() override;
    void showContent() override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void showFirst();
    void showOthers();
    void fitOthers();

    std::vector<RecommendationLine> lines_;
    RecommendationRow* first_ = nullptr;
    QWidget* others_ = nullptr;
    std::vector<RecommendationRow*> rows_;  ///< within `others_`
    KeptRoom room_;                         ///< rows within `others_`
};

}  // namespace tallowcrest
