#include "app/headless_advisor.h"

#include <utility>

#include "advisor/advisor.h"
#include "core/jobs/jobs.h"
#include "core/settings/settings_owner.h"
#include "monitor/system_monitor.h"

namespace tallowcrest {

HeadlessAdvisor::HeadlessAdvisor(SystemMonitor& monitor,
                                 std::function<void(const std::string& answer)> answered)
    : monitor_(monitor),
      answered_(std::move(answered)),
      changes_(monitor.services().jobs.mainQueue(), [this] { finish(); }) {}

void HeadlessAdvisor::begin(const std::optional<std::string>& question) {
    isQuestion_ = question.has_value();
    Advisor& advisor = monitor_.advisor();
    if (isQuestion_) {
        changes_.observe({&advisor.chat.observable()});
        // What the owner has asked in the window is no part of this question.
        advisor.chat.clearChat();
        advisor.chat.askQuickQuestion(*question);
        return;
    }
    changes_.observe({&advisor.provider.observable()});
    // The option only reads, whatever the owner allows in the window. These settings are not
    // stored.
    SettingsOwner& settings = monitor_.settingsOwner();
    settings.set(&Settings::aiSafeActionsEnabled, false);
    settings.set(&Settings::aiAutonomyMode, AIAutonomyMode::apprentice);
    advisor.provider.sendAIAnalysis();
}

void HeadlessAdvisor::finish() {
    const Advisor& advisor = monitor_.advisor();
    const bool isBusy =
        isQuestion_ ? advisor.chat.state().aiChatBusy : advisor.provider.state().aiBusy;
    if (isDone_ || isBusy) {
        return;
    }
    isDone_ = true;
    answered_(isQuestion_ ? advisor.chat.aiChatMessages().back().text
                          : advisor.provider.state().aiInsight);
}

}  // namespace tallowcrest
