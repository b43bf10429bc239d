#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "advisor/provider_exchange.h"
#include "core/advisor_records.h"
#include "core/date.h"
#include "core/jobs/jobs.h"
#include "core/outcome.h"
#include "core/services.h"
#include "core/settings/stored_list.h"

namespace tallowcrest {

class LatestSample;
class Observable;
class Reports;
class ReviewTarget;
class StoredKey;

/// The most characters of a question. It is stored, drawn and sent with later questions, too.
inline constexpr std::size_t maximumQuestionCharacters = 10'000;

struct ChatState {
    std::string aiChatInput;  ///< the text of the entry field
    /// Whether an answer is under way, from the reading of the key on, which can ask the owner to
    /// unlock the secret store.
    bool aiChatBusy = false;
    /// Whether it is the reading of the key that is waited for, and not the service.
    bool isReadingKey = false;
    /// Since when the key is being read, which takes at most about `unlockWait`, or, later, the
    /// service asked, which takes at most about `exchangeWait`. Meaningless while it is not busy.
    /// The clock can be set back meanwhile; see `secondsWaited`.
    Date aiChatBusySince;
    /// Whether the last answer is one of the service, and not of this machine.
    bool isOfService = false;
    /// Why this machine gave the last answer although a service was asked, in the words of the
    /// activity log; empty otherwise.
    std::string fallbackReason;
};

/// Questions of the owner and their answers, by the provider or by this machine alone. It never
/// acts, and no answer is read for actions. Each question gets exactly one answer. Main thread.
class Chat {
public:
    /// Begins with the messages that an earlier run left, or with a welcome. The references must
    /// outlive the object.
    Chat(const Services& services, const LatestSample& sample, const ReviewTarget& review,
         const Reports& reports, const StoredKey& key);
    ~Chat();
    Chat(const Chat&) = delete;
    Chat& operator=(const Chat&) = delete;

    const ChatState& state() const { return state_; }
    /// Oldest first.
    const std::vector<AIChatMessage>& aiChatMessages() const { return *messages_; }

    /// What is not UTF-8 becomes U+FFFD: the text will be stored and sent.
    void setAIChatInput(std::string text);

    /// Asks what is in the input. Ignored while an answer is under way and when the input has no
    /// text, refused with a message when it has more than `maximumQuestionCharacters`; the input
    /// then stays as it is.
    Outcome sendChatMessage();
    /// Puts `text` into the input and sends it.
    Outcome askQuickQuestion(std::string text);

    /// The whole text that would be sent if the input was sent now. Absent before the first sample.
    std::optional<std::string> aiPayload() const;

    /// Removes all messages; no welcome comes back. An answer that is under way still comes.
    Outcome clearChat();
    /// Removes all messages without an event.
    void forgetMessages();

    /// Notifies of a changed state and of new and removed messages.
    Observable& observable() { return *observable_; }

private:
    /// `access` is absent when this machine has to answer.
    Outcome sendWith(std::optional<ProviderAccess> access, const std::string& question);
    /// `result` is absent when nothing was sent, for want of a key.
    void finishChatRequest(const std::optional<ProviderResult>& result,
                           const std::string& question);
    Outcome answerOnThisMachine(const std::string& question);
    std::string onDeviceAnswer(const std::string& question) const;
    /// With `cutsList` the list keeps no more than what is stored.
    void addMessage(std::string role, std::string text, bool cutsList = false);
    void setBusy(bool isBusy, bool isReadingKey = false);
    Outcome record(std::string message) const;

    Services services_;
    const LatestSample& sample_;
    const ReviewTarget& review_;
    const Reports& reports_;
    const StoredKey& key_;
    std::unique_ptr<Observable> observable_;
    ChatState state_;
    StoredList<std::vector<AIChatMessage>> messages_;
    JobScope jobs_;
};

}  // namespace tallowcrest
