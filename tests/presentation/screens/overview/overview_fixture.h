#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/presentation/shown_texts.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

/// The window over a machine whose recommendations and insights a test sets.
class OverviewFixture : public WindowFixture {
protected:
    std::vector<std::string> texts(const char* identifier) {
        return shownTexts(*visible(identifier));
    }
    std::vector<std::string> cards(const char* identifier) {
        return shownCards(*visible(identifier));
    }

    static Recommendation recommend(const char* title, Recommendation::Severity severity,
                                    std::optional<std::int64_t> pid = std::nullopt) {
        return {UUID::random(), title, std::string(title) + " in detail", severity, pid};
    }

    int heightOf(const char* identifier) { return visible(identifier)->height(); }

    std::vector<Recommendation>& recommendations = machine.recommendations.emplace();
    std::vector<SessionInsight>& insights = machine.sessionInsights.emplace();
};

}  // namespace tallowcrest
