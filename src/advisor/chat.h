#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "advisor/advisor_ports.h"
#include "advisor/provider_reply.h"
#include "core/advisor_records.h"
#include "core/date.h"
#include "core/jobs/jobs.h"
#include "core/outcome.h"
#include "core/secret_text.h"
#include "core/services.h"
#include "core/settings/stored_list.h"

namespace tallowcrest {

class LatestSample;
class Observable;
class Reports;
class ReviewTarget;

struct ChatState {
    std::string aiChatInput;  ///< the text of the entry field
    /// Whether an answer is under way, from the reading of the key on, which can ask the owner to
    /// unlock the secret store.
    bool aiChatBusy = false;
    /// Since when the key is being read or, later, the service asked, which takes at most about
    /// `exchangeWait`. Meaningless while it is not busy.
    Date aiChatBusySince;
};

/// Questions of the owner and their answers, by the provider or by this machine alone. It never
/// acts, and no answer is read for actions. Each question gets exactly one answer. Main thread.
class Chat {
public:
    /// The references must outlive the object.
    struct Dependencies {
        Services services;
        const LatestSample& sample;
        const ReviewTarget& review;
        const Reports& reports;
        AdvisorPorts ports;
    };

    /// Begins with the messages that an earlier run left, or with a welcome.
    explicit Chat(Dependencies dependencies);
    ~Chat();
    Chat(const Chat&) = delete;
    Chat& operator=(const Chat&) = delete;

    const ChatState& state() const { return state_; }
    /// Oldest first.
    const std::vector<AIChatMessage>& aiChatMessages() const { return *messages_; }

    void setAIChatInput(std::string text);

    /// Asks what is in the input. Ignored while an answer is under way and when the input has no
    /// text; the input then stays as it is.
    Outcome sendChatMessage();
    /// Puts `text` into the input and sends it.
    Outcome askQuickQuestion(std::string text);

    /// Removes all messages; no welcome comes back.
    Outcome clearChat();

    /// Notifies of a changed state and of new and removed messages.
    Observable& observable() { return *observable_; }

private:
    void sendWith(std::optional<SecretText> key, const std::string& question);
    void finishChatRequest(const ProviderResult& result, const std::string& question);
    Outcome answerOnThisMachine(const std::string& question);
    std::string onDeviceAnswer(const std::string& question) const;
    void addMessage(std::string role, std::string text);
    void setBusy(bool isBusy);
    Outcome record(std::string message) const;

    Dependencies dependencies_;
    std::unique_ptr<Observable> observable_;
    ChatState state_;
    StoredList<std::vector<AIChatMessage>> messages_;
    JobScope jobs_;
};

}  // namespace tallowcrest
