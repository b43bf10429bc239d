#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "presentation/widgets/summary_card.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

/// The window over a machine whose recommendations and insights a test sets.
class OverviewBlocksTest : public WindowFixture {
protected:
    OverviewBlocksTest() {
        machine.extensions.background.buildRecommendations =
            [this](const auto&, double, double, double) { return recommendations; };
        machine.extensions.main.buildSessionInsights = [this](const SystemSnapshot&) {
            return insights;
        };
    }

    /// Every text that shows within the block of that identifier, in reading order.
    std::vector<std::string> texts(const char* identifier) {
        QWidget* block = visible(identifier);
        std::vector<std::pair<std::pair<int, int>, std::string>> found;
        for (const ElidedLabel* label : block->findChildren<ElidedLabel*>()) {
            if (label->isVisible() && !label->text().isEmpty()) {
                const QPoint at = label->mapTo(block, QPoint());
                found.push_back({{at.y(), at.x()}, label->text().toStdString()});
            }
        }
        std::sort(found.begin(), found.end());
        std::vector<std::string> result;
        for (auto& [place, text] : found) {
            result.push_back(std::move(text));
        }
        return result;
    }

    /// The cards of a block as "title: value, detail".
    std::vector<std::string> cards(const char* identifier) {
        std::vector<std::string> found;
        for (const SummaryCard* card : visible(identifier)->findChildren<SummaryCard*>()) {
            if (card->isVisible()) {
                found.push_back(
                    (card->accessibleName() + u": "_s + card->accessibleValue()).toStdString());
            }
        }
        return found;
    }

    static Recommendation recommend(const char* title, Recommendation::Severity severity,
                                    std::optional<std::int64_t> pid = std::nullopt) {
        return {UUID::random(), title, std::string(title) + " in detail", severity, pid};
    }

    int heightOf(const char* identifier) { return visible(identifier)->height(); }

    std::vector<Recommendation> recommendations;
    std::vector<SessionInsight> insights;
};

}  // namespace tallowcrest
