#include "advisor/chat.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <variant>

#include "actions/review_target.h"
#include "advisor/advisor_prompts.h"
#include "advisor/endpoint.h"
#include "advisor/guidance.h"
#include "advisor/stored_key.h"
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

/// The messages that a service sees beside the question.
std::vector<AIChatMessage> recentChat(const std::vector<AIChatMessage>& messages) {
    const auto count = static_cast<std::ptrdiff_t>(std::min(messages.size(), recentMessages));
    return {messages.end() - count, messages.end()};
}

/// `text` with the beginning of the question.
std::string eventDetail(std::string_view text, std::string_view question) {
    return std::string(text).append(firstCharacters(question, recordedCharacters));
}

}  // namespace

Chat::Chat(const Services& services, const LatestSample& sample, const ReviewTarget& review,
           const Reports& reports, const StoredKey& key)
    : services_(services),
      sample_(sample),
      review_(review),
      reports_(reports),
      key_(key),
      observable_(std::make_unique<Observable>(services.jobs.mainQueue())),
      messages_(services.settings, stored::chatMessages, welcome(services.clock.now())),
      jobs_(services.jobs) {}

Chat::~Chat() = default;

void Chat::setAIChatInput(std::string text) {
    state_.aiChatInput = isValidUTF8(text) ? std::move(text) : replacingInvalidUTF8(text);
    observable_->changed();
}

Outcome Chat::askQuickQuestion(std::string text) {
    setAIChatInput(std::move(text));
    return sendChatMessage();
}

Outcome Chat::sendChatMessage() {
    const std::string question(trimmingWhiteSpace(state_.aiChatInput));
    if (question.empty() || state_.aiChatBusy) {
        return Outcome::ignored();
    }
    if (firstCharacters(question, maximumQuestionCharacters).size() < question.size()) {
        return services_.log.record(
            Outcome::refused("A question may have at most 10,000 characters."));
    }
    setAIChatInput({});
    state_.isOfService = false;
    state_.fallbackReason.clear();
    addMessage(ownerRole, question);
    return key_.readAccess(
        jobs_, [this] { setBusy(true, true); },
        // The settings as they are by then: they can change while the key is read.
        [this] { return endpointFrom(services_.settings.values().aiEndpoint); },
        [this, question](std::optional<ProviderAccess> access) {
            return sendWith(std::move(access), question);
        });
}

Outcome Chat::answerOnThisMachine(const std::string& question) {
    addMessage(advisorRole, onDeviceAnswer(question));
    services_.log.recordEvent(ActivityKind::localGuidance,
                              eventDetail("Answered without paid AI: ", question));
    return record("Answered with on-device guidance.");
}

Outcome Chat::sendWith(std::optional<ProviderAccess> access, const std::string& question) {
    if (!access) {
        setBusy(false);
        return answerOnThisMachine(question);
    }
    auto report = reports_.diagnosticsReport(access->isRedacted);
    if (!report) {
        setBusy(false);
        addMessage(advisorRole, std::string(noSampleAnswer));
        return Outcome::refused(std::string(noSampleAnswer));
    }
    setBusy(true);
    record("Asking Tallowcrest Chat...");
    jobs_.run(
        Lane::advisor,
        [access = *std::move(access), recent = recentChat(*messages_), question,
         report = *std::move(report)](const Stop& stop) {
            return postChatRequest(access, recent, question, report, stop.stopToken());
        },
        [this, question](const std::optional<ProviderResult>& result) {
            finishChatRequest(result, question);
        });
    return Outcome::asked();
}

void Chat::finishChatRequest(const std::optional<ProviderResult>& result,
                             const std::string& question) {
    setBusy(false);
    if (!result) {
        answerOnThisMachine(question);
        return;
    }
    ActivityLog& log = services_.log;
    if (const auto* error = std::get_if<AIError>(&*result)) {
        state_.fallbackReason = "Paid AI fallback: " + error->message;
        addMessage(advisorRole,
                   "Paid AI is currently unavailable, so here is the on-device answer:\n\n" +
                       onDeviceAnswer(question),
                   true);
        log.recordEvent(ActivityKind::localGuidance, state_.fallbackReason);
        record("Answered with on-device fallback guidance.");
    } else {
        state_.isOfService = true;
        addMessage(advisorRole, std::get<std::string>(*result), true);
        log.recordEvent(ActivityKind::chat, eventDetail("Answered: ", question));
        record("Tallowcrest Chat answered.");
    }
}

std::string Chat::onDeviceAnswer(const std::string& question) const {
    const auto& snapshot = sample_.snapshot();
    if (!snapshot) {
        return std::string(noSampleAnswer);
    }
    const SelectedTargetSummary target = review_.selectedTargetSummary();
    return onDeviceChatAnswer(
        question, guidanceFacts(*snapshot, services_.settings.values(), services_.locale),
        review_.selectedPID() ? &target : nullptr);
}

std::optional<std::string> Chat::aiPayload() const {
    const auto report =
        reports_.diagnosticsReport(services_.settings.values().aiRedactProcessDetails);
    if (!report) {
        return std::nullopt;
    }
    const std::string question(trimmingWhiteSpace(state_.aiChatInput));
    std::vector<AIChatMessage> recent = recentChat(*messages_);
    // The question would be the last of the messages by then.
    recent.push_back({.id = {}, .role = ownerRole, .text = question, .date = {}});
    return chatPrompt(recentChat(recent), question, *report);
}

void Chat::forgetMessages() {
    messages_.change([](std::vector<AIChatMessage>& messages) { messages.clear(); });
    observable_->changed();
}

Outcome Chat::clearChat() {
    forgetMessages();
    return record("Cleared Tallowcrest Chat.");
}

void Chat::addMessage(std::string role, std::string text, bool cutsList) {
    messages_.change([&](std::vector<AIChatMessage>& messages) {
        messages.push_back(
            {UUID::random(), std::move(role), std::move(text), services_.clock.now()});
        if (cutsList) {
            stored::chatMessages.trim(messages);
        }
    });
    observable_->changed();
}

void Chat::setBusy(bool isBusy, bool isReadingKey) {
    state_.aiChatBusy = isBusy;
    state_.isReadingKey = isReadingKey;
    state_.aiChatBusySince = services_.clock.now();
    observable_->changed();
}

Outcome Chat::record(std::string message) const {
    return services_.log.record(Outcome::done(std::move(message)));
}

}  // namespace tallowcrest
