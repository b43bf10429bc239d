#pragma once

#include <chrono>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <vector>

#include <QString>

#include "advisor/autonomy.h"
#include "advisor/provider.h"
#include "core/advisor_records.h"
#include "core/uuid.h"

/// The texts of AI Advisor. Main thread.
namespace tallowcrest::advisor_lines {

/// The promise of the page.
QString lead();

/// "Enhanced AI connected", with the host of a service that is not the usual one (empty for that),
/// "On-device guidance active", or that the address of the service must not be used.
QString connectionState(bool isConnected, bool isEndpointUsable, std::string_view host);

/// What an analysis waits for, how long it has, and how long it can: "Asking OpenAI… 12 s of at
/// most 30 s". While the key is read, the owner may be asked to unlock it, but not while it is
/// looked for.
QString progress(std::string_view service, std::chrono::seconds elapsed, AnalysisWait waitsFor);

/// "AI payload mode: process details redacted, confirmation required"
QString payloadMode(bool isRedacted, bool requiresConfirmation);

/// A suggestion, with why its button cannot run it.
struct SuggestionLine {
    UUID id;
    QString title;
    QString detail;
    QString risk;             ///< "Risk: low"
    bool isCautious = false;  ///< of any other risk than low
    bool isApproved = false;
    QString runTitle;
    QString refusal;  ///< empty when it can run

    bool operator==(const SuggestionLine&) const = default;
};

/// In the order of the actions. `memoryPressure` is 0 before the first sample.
std::vector<SuggestionLine> suggestionLines(std::span<const AIActionSuggestion> actions,
                                            const std::set<UUID>& approved, double memoryPressure,
                                            double warningThreshold);

/// What stands where there are no suggestions.
QString noSuggestions(bool isKeySaved);

struct TrustLine {
    QString name;   ///< "(no type)" in place of a blank one
    QString label;  ///< "New", "Learning" or "Trusted"
    int percent = 0;
    QString figures;

    bool operator==(const TrustLine&) const = default;
};

/// A reply can invent any number of action types.
inline constexpr std::size_t mostInventedTrustLines = 24;

/// The records by their action type: all of the types that exist, and the first
/// `mostInventedTrustLines` of the others.
std::vector<TrustLine> trustLines(const TrustRecords& records);
/// "and 3 more"; empty when no record is left out.
QString moreTrust(std::size_t leftOut);

struct DraftLine {
    UUID id;
    QString title;
    QString trigger;  ///< "When: …"
    QString action;   ///< "Then: …"
    QString risk;     ///< "Risk: low"
    bool isEnabled = false;

    bool operator==(const DraftLine&) const = default;
};

/// Oldest first, as the drafts are.
std::vector<DraftLine> draftLines(std::span<const AIRuleDraft> drafts);

}  // namespace tallowcrest::advisor_lines
