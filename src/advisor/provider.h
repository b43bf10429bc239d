#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "advisor/advisor_output.h"
#include "advisor/provider_exchange.h"
#include "core/advisor_records.h"
#include "core/confirmation_desk.h"
#include "core/date.h"
#include "core/jobs/jobs.h"
#include "core/outcome.h"
#include "core/secret_text.h"
#include "core/services.h"

namespace tallowcrest {

class LatestSample;
class Observable;
class Pasteboard;
class Reports;
class RuleDrafts;
class StoredKey;
class Suggestions;

/// What an analysis that is under way waits for.
enum class AnalysisWait : std::uint8_t {
    search,   ///< the search for a stored key after the start, which never asks the owner
    key,      ///< the reading of the key, which can ask the owner to unlock the secret store
    service,  ///< the answer of the service
};

/// The key and the analysis, as the screens show them.
struct ProviderState {
    /// Whether a key is believed to be stored. It decides the route of an analysis, which reads the
    /// key itself when it begins.
    bool openAIKeySaved = false;
    /// Whether a key is being looked for, saved or removed; to save and to remove are ignored
    /// meanwhile.
    bool isKeyBusy = false;
    /// A summary, the progress or a failure.
    std::string aiInsight;
    /// Advances whenever `aiInsight` becomes what an analysis, or the refusal of one, says.
    std::uint64_t answers = 0;
    /// Whether the last of these is of the service, and not of this machine.
    bool isOfService = false;
    /// Whether an analysis is under way, from the reading of its key on, which can ask the owner to
    /// unlock the secret store. That includes the search for a stored key after the start.
    bool aiBusy = false;
    /// Meaningless while it is not busy.
    AnalysisWait waitsFor = AnalysisWait::service;
    /// What texts call the service that is asked, which the endpoint can differ from meanwhile.
    /// Meaningless while none is asked.
    std::string askedService;
    /// Since when it waits for `waitsFor`: for the key at most about `unlockWait`, for the service
    /// at most about `exchangeWait`. Meaningless while it is not busy. The clock can be set back
    /// meanwhile; see `secondsWaited`.
    Date aiBusySince;
};

/// The key of the provider, and analyses of the present state by the provider or, without a key or
/// when the exchange fails, by this machine alone. The service sees nothing but the report. Nothing
/// here blocks: the secret store and the exchange have lanes of their own. Main thread.
class Provider {
public:
    /// The references must outlive the object.
    struct Dependencies {
        Services services;
        const LatestSample& sample;
        const Reports& reports;
        Pasteboard& pasteboard;
        Suggestions& suggestions;
        RuleDrafts& drafts;
        StoredKey& key;
    };

    /// The kind of confirmation that it registers.
    static constexpr std::string_view confirmationKind = "ai_analyze";

    /// Begins to look for a stored key.
    explicit Provider(Dependencies dependencies);
    ~Provider();
    Provider(const Provider&) = delete;
    Provider& operator=(const Provider&) = delete;

    const ProviderState& state() const { return state_; }

    /// Whether an analysis can be one of the provider: a key is believed to be stored, or the
    /// owner's own server is to be asked, which needs none.
    bool isConnected() const;

    /// What the owner has typed as the key and not saved yet.
    const SecretText& openAIKeyInput() const { return openAIKeyInput_; }
    /// From the first character on, a crash leaves no dump of the memory. Notifies nobody: only the
    /// caller shows the input, and every character would refresh all that shows the provider.
    void setOpenAIKeyInput(SecretText text);

    /// Gets the outcome of what an operation answered with `asked`: done or failed. Not called for
    /// other answers, nor when the provider is gone by then.
    using KeyChanged = std::function<void(const Outcome&)>;

    /// Stores the typed key in place of an older one; refused when it is not one. What became of it
    /// is in `aiInsight`, too. The input is cleared once the key is stored, unless it was changed
    /// meanwhile. If storing fails, the input stays, and the older key is gone, or still there if
    /// it could not even be removed.
    Outcome saveOpenAIKey(KeyChanged then = {});
    /// Removes the stored key, and clears the input as above. If that fails, `openAIKeySaved` and
    /// the input stay.
    Outcome removeOpenAIKey(KeyChanged then = {});

    void setAIRedactProcessDetails(bool redacts);
    void setAIRequirePreview(bool isRequired);

    /// Sets the base address of a server to ask in place of OpenAI's, trimmed; empty for OpenAI's.
    /// An address that must not be used changes nothing and is refused with a message.
    Outcome setAIEndpoint(std::string_view address);
    /// What texts call the service that is asked: "OpenAI", or the host of another one. Empty when
    /// the stored address must not be used.
    std::string serviceName() const;

    /// Starts an analysis, after a confirmation if the settings say so. Unless `isConnected`, it is
    /// the analysis of this machine alone, at once; so it is, as after a failed exchange, when the
    /// stored address must not be used. Refused before the first sample, ignored while an
    /// analysis is under way. While the stored key is being looked for, it is under way, and begins
    /// when the search ends.
    Outcome requestAIAnalysis();
    /// The same if a key is believed to be stored; ignored otherwise. During the search it waits
    /// for the end of it without being under way, and nothing is asked then if an analysis is, or
    /// if a confirmation is pending.
    Outcome requestAIAnalysisWithKey();
    /// The same without the confirmation. Ignored while an analysis is under way.
    Outcome sendAIAnalysis();
    /// The analysis of this machine alone, whatever is connected.
    Outcome analyzeOnThisMachine();
    /// Copies the report that would be sent to the clipboard. Refused before the first sample.
    Outcome copyAIPreview();

    /// Notifies of a changed state, and of an input that was cleared. What is in the settings is
    /// reported by their owner.
    Observable& observable() { return *observable_; }

private:
    /// What the owner agrees to when an analysis is confirmed.
    struct Consent {
        std::optional<Endpoint> endpoint;  ///< absent when the stored address must not be used
        bool isRedacted = true;

        bool operator==(const Consent&) const = default;
    };
    /// Absent when nothing was sent, for want of a key.
    using AnalysisResult = std::optional<std::variant<AdvisorOutput, AIError>>;

    Consent presentConsent() const;
    Outcome askForConsent();
    void lookForKey();
    Outcome finishSavingKey(bool isSaved);
    Outcome finishRemovingKey(bool isRemoved);
    void clearOldInput();
    Outcome refuseWithoutSample();
    /// `access` is absent when this machine has to do it.
    Outcome sendAIAnalysisWith(std::optional<ProviderAccess> access);
    void finishAIAnalysis(AnalysisResult result, bool runsSafeAction);
    Outcome fallBack();
    /// `fellBack` says that a request to the provider has failed.
    Outcome composeOnDeviceAnalysis(bool fellBack);
    void setInsight(std::string text);
    void setAnswer(std::string text, bool isOfService = false);
    void setBusy(AnalysisWait waitsFor);
    void setIdle();
    void setKeyBusy(bool isBusy);
    Outcome record(Outcome outcome) const;

    Dependencies dependencies_;
    std::unique_ptr<Observable> observable_;
    ProviderState state_;
    bool isLookingForKey_ = false;
    bool isWantedWithKey_ = false;  ///< whether an analysis is wanted if the search finds a key
    /// Whether `aiInsight` is still the one that the program begins with.
    bool isInsightInitial_ = true;
    SecretText openAIKeyInput_;
    /// Whether the input was changed since the key was last being saved or removed.
    bool isInputNew_ = false;
    JobScope jobs_;
    ConfirmationDesk::Registration handler_;
};

}  // namespace tallowcrest
