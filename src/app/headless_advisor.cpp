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
      changes_(monitor.services().jobs.mainQueue(), [this] { finish(); }) {}

Outcome HeadlessAdvisor::begin(const std::optional<std::string>& question, bool mayBeSent) {
    isQuestion_ = question.has_value();
    if (!isQuestion_) {
        changes_.observe({&monitor_.advisor().provider.observable()});
        return analyze(mayBeSent);
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

Outcome HeadlessAdvisor::analyze(bool mayBeSent) {
    // The option only reads, whatever the owner allows in the window.
    monitor_.advisor().suggestions.onlyPropose();
    Provider& provider = monitor_.advisor().provider;
    ConfirmationDesk& desk = monitor_.confirmations();
    provider.requestAIAnalysis();
    if (!desk.pendingConfirmation()) {
        return Outcome::asked();
    }
    if (mayBeSent) {
        desk.confirmPending();
        return Outcome::asked();
    }
    desk.cancelPending();
    provider.analyzeOnThisMachine();
    return Outcome::asked(
        "nothing was sent: the settings ask before each analysis, and '--yes' was not given");
}

void HeadlessAdvisor::finish() {
    const Advisor& advisor = monitor_.advisor();
    const bool isBusy =
        isQuestion_ ? advisor.chat.state().aiChatBusy : advisor.provider.state().aiBusy;
    if (isDone_ || isBusy) {
        return;
    }
    isDone_ = true;
    if (isQuestion_) {
        answered_({advisor.chat.aiChatMessages().back().text, advisor.chat.state().fallbackReason});
    } else {
        answered_({advisor.provider.state().aiInsight});
    }
}

}  // namespace tallowcrest
