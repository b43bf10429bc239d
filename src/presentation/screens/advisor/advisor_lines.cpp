#include "presentation/screens/advisor/advisor_lines.h"

#include <algorithm>

#include "advisor/action_catalogue.h"
#include "advisor/provider_exchange.h"
#include "advisor/run_refusal.h"
#include "advisor/trust_score.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest::advisor_lines {
namespace {

using dashboard_text::shortText;
using dashboard_text::text;

constexpr qsizetype longestTitle = 200;
constexpr qsizetype longestDetail = 1000;
constexpr qsizetype longestWord = 40;
/// A refusal has the title of the suggestion in it.
constexpr qsizetype longestRefusal = longestTitle + 60;

QString riskLine(std::string_view risk) {
    return u"Risk: "_s + shortText(risk, longestWord);
}

QString seconds(std::chrono::seconds count) {
    return u"%1 s"_s.arg(dashboard_text::count(count.count()));
}

}  // namespace

QString lead() {
    return u"AI can explain signals and propose reversible actions. It cannot quit apps, kill "
           "processes, or change remote Macs without you choosing a visible control."_s;
}

QString connectionState(bool isConnected, bool isEndpointUsable, std::string_view host) {
    if (!isEndpointUsable) {
        return u"The endpoint in the settings cannot be used. On-device guidance active"_s;
    }
    return !isConnected   ? u"On-device guidance active"_s
           : host.empty() ? u"Enhanced AI connected"_s
                          : u"Enhanced AI connected to "_s + text(host);
}

QString progress(std::string_view service, std::chrono::seconds elapsed, AnalysisWait waitsFor) {
    const QString shown = seconds(std::max(elapsed, std::chrono::seconds(0)));
    if (waitsFor == AnalysisWait::search) {
        return u"Looking for the key… "_s + shown;
    }
    if (waitsFor == AnalysisWait::key) {
        return u"Reading the key… %1. The system may ask for the password of its key store."_s.arg(
            shown);
    }
    const QString asking = u"Asking %1… %2"_s.arg(text(service), shown);
    // Beyond the limit, the clock was set.
    return elapsed > exchangeWait ? asking
                                  : asking + u" of at most %1"_s.arg(seconds(exchangeWait));
}

QString payloadMode(bool isRedacted, bool requiresConfirmation) {
    return u"AI payload mode: %1, %2"_s.arg(
        isRedacted ? u"process details redacted"_s : u"process details included"_s,
        requiresConfirmation ? u"confirmation required"_s : u"direct analyze enabled"_s);
}

std::vector<SuggestionLine> suggestionLines(std::span<const AIActionSuggestion> actions,
                                            const std::set<UUID>& approved, double memoryPressure,
                                            double warningThreshold) {
    std::vector<SuggestionLine> lines;
    for (const AIActionSuggestion& action : actions) {
        const bool isApproved = approved.contains(action.id);
        const auto refusal = runRefusal(action, isApproved, memoryPressure, warningThreshold);
        lines.push_back(
            {.id = action.id,
             .title = shortText(action.title, longestTitle),
             .detail = shortText(action.detail, longestDetail),
             .risk = riskLine(action.risk),
             .isCautious = action.risk != "low",
             .isApproved = isApproved,
             .runTitle = text(runButtonTitle(action.type)),
             .refusal = refusal ? shortText(refusal->message, longestRefusal) : QString()});
    }
    return lines;
}

QString noSuggestions(bool isKeySaved) {
    return isKeySaved ? u"No suggested actions. Analyze Now asks for some."_s
                      : u"On-device guidance suggests no actions. Save a key in Settings > AI to "
                        "get some."_s;
}

std::vector<TrustLine> trustLines(const TrustRecords& records) {
    std::vector<TrustLine> lines;
    std::size_t invented = 0;
    for (const auto& [type, record] : records) {
        const bool isInvented = !advisorAction(type) && type != diskCleanupAction;
        if (isInvented && ++invented > mostInventedTrustLines) {
            continue;
        }
        const QString name = shortText(trustDisplayName(type), longestWord);
        lines.push_back({.name = name.trimmed().isEmpty() ? u"(no type)"_s : name,
                         .label = text(trustLabel(record)),
                         .percent = static_cast<int>(trustPercent(record)),
                         .figures = text(trustLine(record))});
    }
    return lines;
}

QString moreTrust(std::size_t leftOut) {
    return leftOut > 0
               ? u"and %1 more"_s.arg(dashboard_text::count(static_cast<std::int64_t>(leftOut)))
               : QString();
}

std::vector<DraftLine> draftLines(std::span<const AIRuleDraft> drafts) {
    std::vector<DraftLine> lines;
    for (const AIRuleDraft& draft : drafts) {
        lines.push_back({.id = draft.id,
                         .title = shortText(draft.title, longestTitle),
                         .trigger = u"When: "_s + shortText(draft.trigger, longestDetail),
                         .action = u"Then: "_s + shortText(draft.action, longestDetail),
                         .risk = riskLine(draft.risk),
                         .isEnabled = draft.enabled});
    }
    return lines;
}

}  // namespace tallowcrest::advisor_lines
