#include "advisor/draft_rules.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <set>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "advisor/action_catalogue.h"
#include "core/number_text.h"
#include "reports/diagnostics_rows.h"
#include "sampling/binary_units.h"

namespace tallowcrest::draft_rules {
namespace {

constexpr double heavyAppMB = 3000.0;
constexpr std::size_t suggestionsWithPatterns = 2;

AIRuleDraft draft(std::string title, std::string trigger, std::string action,
                  std::string risk = "low") {
    return {UUID::random(),    std::move(title), std::move(trigger),
            std::move(action), std::move(risk),  false};
}

void addSampleRules(std::vector<AIRuleDraft>& drafts, const SystemSnapshot& snapshot,
                    const Facts& facts) {
    const std::string threshold = cutToInteger(facts.warningThreshold);
    if (facts.warningThreshold <= snapshot.memory.pressure) {
        drafts.push_back(
            draft("Warn on sustained memory pressure",
                  fmt::format("Memory pressure stays above {}% for several samples", threshold),
                  "Show warning and select the safest top app"));
    }
    if (!snapshot.appImpacts.empty() && snapshot.appImpacts.front().totalMemoryMB >= heavyAppMB) {
        const AppImpact& app = snapshot.appImpacts.front();
        const std::string name = reportText(app.name);
        drafts.push_back(
            draft(fmt::format("Watch {} memory growth", name),
                  fmt::format("{} uses more than {} GB again", name,
                              withOneDecimal(app.totalMemoryMB / megabytesPerGigabyte)),
                  fmt::format("Warn and open Optimize with {} selected", name)));
    }
    if (facts.hasRemoteHealth) {
        drafts.push_back(
            draft("Scan remotes during local pressure",
                  fmt::format("This Mac crosses {}% CPU or memory pressure", threshold),
                  "Scan online Tailscale Macs for matching load"));
    }
}

}  // namespace

std::vector<AIRuleDraft> candidates(const Facts& facts) {
    std::vector<AIRuleDraft> drafts;
    if (facts.snapshot != nullptr) {
        addSampleRules(drafts, *facts.snapshot, facts);
    }
    for (const AIActionSuggestion& suggestion :
         facts.suggestions.first(std::min(facts.suggestions.size(), suggestionsWithPatterns))) {
        const auto action = advisorAction(suggestion.type);
        if (action == AdvisorAction::scanRemote || action == AdvisorAction::selectTop) {
            drafts.push_back(draft("AI pattern: " + suggestion.title,
                                   "When future diagnostics resemble this AI analysis",
                                   suggestion.detail, suggestion.risk));
        }
    }
    return drafts;
}

void append(std::vector<AIRuleDraft>& drafts, std::vector<AIRuleDraft> candidates) {
    std::set<std::string> titles;
    for (const AIRuleDraft& present : drafts) {
        titles.insert(present.title);
    }
    std::erase_if(candidates,
                  [&titles](const AIRuleDraft& each) { return titles.contains(each.title); });
    std::ranges::move(candidates, std::back_inserter(drafts));
    if (drafts.size() > maximumDrafts) {
        drafts.erase(drafts.begin(), drafts.end() - static_cast<std::ptrdiff_t>(maximumDrafts));
    }
}

}  // namespace tallowcrest::draft_rules
