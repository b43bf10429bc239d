#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/outcome.h"
#include "core/uuid.h"
#include "presentation/screens/shared/screen.h"

class QTimer;

namespace tallowcrest {

class GuidanceCard;
class RuleDraftsCard;
class Suggestions;
class SuggestionsCard;
class SystemMonitor;
class TrustCard;
struct AIActionSuggestion;
struct WindowState;

/// The AI Advisor step of the Optimize workspace: the latest analysis, what it suggests, how far
/// the advisor is trusted, and the drafts of rules. Main thread.
class AdvisorPage final : public Screen {
    Q_OBJECT

public:
    explicit AdvisorPage(SystemMonitor& monitor, WindowState& state, QWidget* parent = nullptr);

    void refresh() override;
    std::vector<Observable*> shows() const override;
    std::vector<HeaderAction> headerActions() override;

protected:
    void hideEvent(QHideEvent* event) override;

private:
    QWidget* makeLead();
    void makeCards();
    void connectGuidance();
    void connectSuggestions();
    void connectTrustAndDrafts();
    void analyze();
    /// Runs `operation` on the suggestion with this id, if it is still there.
    void withSuggestion(const UUID& id,
                        Outcome (Suggestions::*operation)(const AIActionSuggestion&));
    void showOutcome(const Outcome& outcome);
    void showGuidance();
    void showAnswer();
    void showSuggestions();
    /// The line that tells an analysis under way from a hang, once a second.
    void showProgress();

    SystemMonitor& monitor_;
    WindowState& state_;
    GuidanceCard* guidance_ = nullptr;
    SuggestionsCard* suggestions_ = nullptr;
    TrustCard* trust_ = nullptr;
    RuleDraftsCard* drafts_ = nullptr;
    std::optional<std::string> shownAnswer_;
    std::uint64_t saidAnswers_ = 0;  ///< `ProviderState::answers` when the latest was said
    bool isReading_ = false;         ///< shown since the last refresh
    QTimer* second_ = nullptr;
};

}  // namespace tallowcrest
