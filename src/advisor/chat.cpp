#include "advisor/chat.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <variant>

#include "actions/review_target.h"
#include "advisor/endpoint.h"
#include "advisor/guidance.h"
#include "advisor/openai_key.h"
#include "advisor/provider_exchange.h"
#include "core/activity_kinds.h"
#include "core/activity_log.h"
#include "core/clock.h"
#include "core/observable.h"
#include "core/settings/settings_owner.h"
#include "core/settings/stored_lists.h"
#include "core/text.h"
#include "reports/reports.h"
#include "sampling/latest_sample.h"

namespace tallowcrest {
namespace {

constexpr const char* ownerRole = "You";
constexpr const char* advisorRole = "Tallowcrest";

constexpr std::size_t recentMessages = 8;
constexpr std::size_t recordedCharacters = 140;

std::vector<AIChatMessage> welcome(Date now) {
    return {
        {UUID::random(), advisorRole,
         "Ask me what is slowing this Mac down, how to relieve memory pressure, or which action "
         "is safest to review first.",
         now}};
}

/// `text` with the beginning of the question.
std::string eventDetail(std::string_view text, std::string_view question) {
    return std::string(text).append(firstCharacters(question, recordedCharacters));
}

}  // namespace

Chat::Chat(Dependencies dependencies)
    : dependencies_(std::move(dependencies)),
      observable_(std::make_unique<Observable>(dependencies_.services.jobs.mainQueue())),
      messages_(dependencies_.services.settings, stored::chatMessages,
                welcome(dependencies_.services.clock.now())),
      jobs_(dependencies_.services.jobs) {}

Chat::~Chat() = default;

void Chat::setAIChatInput(std::string text) {
    state_.aiChatInput = std::move(text);
    observable_->changed();
}

Outcome Chat::askQuickQuestion(std::string text) {
    setAIChatInput(std::move(text));
    return sendChatMessage();
}

Outcome Chat::sendChatMessage() {
    std::string question(trimmingWhiteSpace(state_.aiChatInput));
    if (question.empty() || state_.aiChatBusy) {
        return Outcome::ignored();
    }
    setAIChatInput({});
    addMessage(ownerRole, question);
    if (dependencies_.ports.secrets == nullptr) {
        return answerOnThisMachine(question);
    }
    setBusy(true);
    jobs_.run(
        Lane::secrets,
        [secrets = dependencies_.ports.secrets](const Stop&) { return readOpenAIKey(*secrets); },
        [this, question = std::move(question)](std::optional<SecretText> key) {
            sendWith(std::move(key), question);
        });
    return Outcome::asked();
}

Outcome Chat::answerOnThisMachine(const std::string& question) {
    addMessage(advisorRole, onDeviceAnswer(question));
    dependencies_.services.log.recordEvent(ActivityKind::localGuidance,
                                           eventDetail("Answered without paid AI: ", question));
    return record("Answered with on-device guidance.");
}

void Chat::sendWith(std::optional<SecretText> key, const std::string& question) {
    if (!key) {
        setBusy(false);
        answerOnThisMachine(question);
        return;
    }
    const Settings& settings = dependencies_.services.settings.values();
    auto report = dependencies_.reports.diagnosticsReport(settings.aiRedactProcessDetails);
    if (!report) {
        setBusy(false);
        addMessage(advisorRole, std::string(noSampleAnswer));
        return;
    }
    setBusy(true);  // anew, as the exchange begins here
    record("Asking Tallowcrest Chat...");
    const auto count = static_cast<std::ptrdiff_t>(std::min(messages_->size(), recentMessages));
    jobs_.run(
        Lane::advisor,
        [access = ProviderAccess{dependencies_.ports.http, endpointFrom(settings.aiEndpoint),
                                 *std::move(key), settings.openAIModel},
         recent = std::vector(messages_->end() - count, messages_->end()), question,
         report = *std::move(report)](const Stop& stop) {
            return postChatRequest(access, recent, question, report, stop.stopToken());
        },
        [this, question](const ProviderResult& result) { finishChatRequest(result, question); });
}

void Chat::finishChatRequest(const ProviderResult& result, const std::string& question) {
    setBusy(false);
    ActivityLog& log = dependencies_.services.log;
    if (const auto* error = std::get_if<AIError>(&result)) {
        addMessage(advisorRole,
                   "Paid AI is currently unavailable, so here is the on-device answer:\n\n" +
                       onDeviceAnswer(question));
        log.recordEvent(ActivityKind::localGuidance, "Paid AI fallback: " + error->message);
        record("Answered with on-device fallback guidance.");
    } else {
        addMessage(advisorRole, std::get<std::string>(result));
        log.recordEvent(ActivityKind::chat, eventDetail("Answered: ", question));
        record("Tallowcrest Chat answered.");
    }
    if (stored::chatMessages.excess(*messages_) > 0) {
        messages_.change(
            [](std::vector<AIChatMessage>& messages) { stored::chatMessages.trim(messages); });
    }
}

std::string Chat::onDeviceAnswer(const std::string& question) const {
    const auto& snapshot = dependencies_.sample.snapshot();
    if (!snapshot) {
        return std::string(noSampleAnswer);
    }
    const Settings& settings = dependencies_.services.settings.values();
    const SelectedTargetSummary target = dependencies_.review.selectedTargetSummary();
    return onDeviceChatAnswer(question,
                              {.snapshot = *snapshot,
                               .warningThreshold = settings.warningThreshold,
                               .diskMinimumFreeGB = settings.diskMinimumFreeGB,
                               .locale = dependencies_.services.locale},
                              dependencies_.review.selectedPID() ? &target : nullptr);
}

Outcome Chat::clearChat() {
    messages_.change([](std::vector<AIChatMessage>& messages) { messages.clear(); });
    observable_->changed();
    return record("Cleared Tallowcrest Chat.");
}

void Chat::addMessage(std::string role, std::string text) {
    messages_.change([&](std::vector<AIChatMessage>& messages) {
        messages.push_back(
            {UUID::random(), std::move(role), std::move(text), dependencies_.services.clock.now()});
    });
    observable_->changed();
}

void Chat::setBusy(bool isBusy) {
    state_.aiChatBusy = isBusy;
    state_.aiChatBusySince = dependencies_.services.clock.now();
    observable_->changed();
}

Outcome Chat::record(std::string message) const {
    return dependencies_.services.log.record(Outcome::done(std::move(message)));
}

}  // namespace tallowcrest
