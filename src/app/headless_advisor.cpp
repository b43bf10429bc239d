#include "app/headless_advisor.h"

#include <utility>

#include "advisor/advisor.h"
#include "core/confirmation_desk.h"
#include "core/jobs/jobs.h"
#include "monitor/system_monitor.h"

namespace tallowcrest {

HeadlessAdvisor::HeadlessAdvisor(SystemMonitor& monitor, Answered answered)
    : monitor_(monitor),
      answered_(std::move(answered)),
      changes_(monitor.services().jobs.mainQueue(), [this] { goOn(); }) {}

Outcome HeadlessAdvisor::begin(const std::optional<std::string>& question, bool mayBeSent) {
    isQuestion_ = question.has_value();
    mayBeSent_ = mayBeSent;
    if (!isQuestion_) {
        Provider& provider = monitor_.advisor().provider;
        changes_.observe({&provider.observable(), &monitor_.confirmations().observable()});
        // The option only reads, whatever the owner allows in the window.
        monitor_.advisor().suggestions.onlyPropose();
        provider.requestAIAnalysis();
        return Outcome::asked();
    }
    Chat& chat = monitor_.advisor().chat;
    // What the owner has asked in the window is no part of this question.
    chat.forgetMessages();
    const Outcome outcome = chat.askQuickQuestion(*question);
    if (outcome.kind == Outcome::Kind::refused && chat.aiChatMessages().empty()) {
        return outcome;
    }
    changes_.observe({&chat.observable()});
    return Outcome::asked();
}

/// Answers the question before an analysis is sent, which comes with the request or, where the key
/// is still being looked for, later.
void HeadlessAdvisor::settleConsent() {
    ConfirmationDesk& desk = monitor_.confirmations();
    if (mayBeSent_) {
        desk.confirmPending();
        return;
    }
    desk.cancelPending();
    monitor_.advisor().provider.analyzeOnThisMachine();
    note_ = "nothing was sent: the settings ask before each analysis, and '--yes' was not given";
}

void HeadlessAdvisor::goOn() {
    const Advisor& advisor = monitor_.advisor();
    const bool isBusy =
        isQuestion_ ? advisor.chat.state().aiChatBusy : advisor.provider.state().aiBusy;
    if (isDone_ || isBusy) {
        return;
    }
    const auto& pending = monitor_.confirmations().pendingConfirmation();
    if (!isQuestion_ && pending && pending->kind == Provider::confirmationKind) {
        settleConsent();
        return;
    }
    isDone_ = true;
    if (isQuestion_) {
        const ChatState& state = advisor.chat.state();
        answered_(
            {advisor.chat.aiChatMessages().back().text, state.isOfService, state.fallbackReason});
    } else {
        const ProviderState& state = advisor.provider.state();
        answered_({state.aiInsight, state.isOfService, note_});
    }
}

}  // namespace tallowcrest
