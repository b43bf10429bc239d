#include "advisor/provider.h"

#include <cstddef>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "actions/desktop_actions.h"
#include "advisor/endpoint.h"
#include "advisor/guidance.h"
#include "advisor/openai_key.h"
#include "advisor/rule_drafts.h"
#include "advisor/stored_key.h"
#include "advisor/suggestions.h"
#include "core/activity_kinds.h"
#include "core/activity_log.h"
#include "core/clock.h"
#include "core/confirmation_desk.h"
#include "core/observable.h"
#include "core/settings/settings_owner.h"
#include "core/text.h"
#include "reports/reports.h"
#include "sampling/latest_sample.h"

namespace tallowcrest {
namespace {

constexpr std::size_t recordedCharacters = 240;

void tell(const Provider::KeyChanged& then, const Outcome& outcome) {
    if (then) {
        then(outcome);
    }
}

}  // namespace

Provider::Provider(Dependencies dependencies)
    : dependencies_(std::move(dependencies)),
      observable_(std::make_unique<Observable>(dependencies_.services.jobs.mainQueue())),
      jobs_(dependencies_.services.jobs) {
    state_.aiInsight =
        "Local recommendations are active. Connect paid AI for deeper explanations and follow-up "
        "questions.";
    handler_ = dependencies_.services.confirmations.registerKind(
        confirmationKind, {.confirm =
                               [this](const ConfirmationRequest& /*request*/, void* held) {
                                   // The settings can have changed while the question was open,
                                   // that for the question included.
                                   const auto* const agreed = static_cast<const Consent*>(held);
                                   const bool isAgreed =
                                       agreed != nullptr && *agreed == presentConsent();
                                   return isAgreed ? sendAIAnalysis() : askForConsent();
                               },
                           .cancel = {}});
    lookForKey();
}

Provider::~Provider() = default;

void Provider::lookForKey() {
    if (!dependencies_.key.hasStore()) {
        return;
    }
    isLookingForKey_ = true;
    setKeyBusy(true);
    dependencies_.key.find(jobs_, [this](bool isStored) {
        isLookingForKey_ = false;
        setKeyBusy(false);
        state_.openAIKeySaved = isStored;
        if (isStored && isInsightInitial_) {
            state_.aiInsight = "Enhanced AI recommendations are ready.";
        }
        const bool isWantedWithKey = std::exchange(isWantedWithKey_, false);
        if (state_.aiBusy && state_.waitsFor == AnalysisWait::search) {
            setIdle();
            requestAIAnalysis();
        } else if (isWantedWithKey && !dependencies_.services.confirmations.pendingConfirmation()) {
            requestAIAnalysisWithKey();
        }
    });
}

// The key -----------------------------------------------------------------------------------------

void Provider::setOpenAIKeyInput(SecretText text) {
    if (!text.isEmpty()) {
        dependencies_.key.forbidDumps();
    }
    isInputNew_ = isInputNew_ || text.view() != openAIKeyInput_.view();
    openAIKeyInput_ = std::move(text);
}

Outcome Provider::saveOpenAIKey(KeyChanged then) {
    if (state_.isKeyBusy) {
        return Outcome::ignored();
    }
    auto key = validatedOpenAIKey(openAIKeyInput_.view());
    if (!key) {
        setInsight(std::string(notAKey));
        return Outcome::refused(state_.aiInsight);
    }
    if (!dependencies_.key.hasStore()) {
        return finishSavingKey(false);
    }
    isInputNew_ = false;
    setKeyBusy(true);
    dependencies_.key.save(jobs_, *std::move(key), [this, then = std::move(then)](bool isSaved) {
        tell(then, finishSavingKey(isSaved));
    });
    return Outcome::asked();
}

Outcome Provider::finishSavingKey(bool isSaved) {
    setKeyBusy(false);
    if (!isSaved) {
        setInsight("Could not save the key in Keychain.");
        return Outcome::failed(state_.aiInsight);
    }
    clearOldInput();
    state_.openAIKeySaved = true;
    setInsight("OpenAI key saved in Keychain. AI recommendations are ready.");
    return record(Outcome::done("Saved OpenAI API key in Keychain."));
}

Outcome Provider::removeOpenAIKey(KeyChanged then) {
    if (state_.isKeyBusy) {
        return Outcome::ignored();
    }
    isInputNew_ = false;
    if (!dependencies_.key.hasStore()) {
        return finishRemovingKey(true);
    }
    setKeyBusy(true);
    dependencies_.key.remove(jobs_, [this, then = std::move(then)](bool isRemoved) {
        tell(then, finishRemovingKey(isRemoved));
    });
    return Outcome::asked();
}

Outcome Provider::finishRemovingKey(bool isRemoved) {
    setKeyBusy(false);
    if (!isRemoved) {
        setInsight("Could not remove the key from Keychain.");
        return Outcome::failed(state_.aiInsight);
    }
    clearOldInput();
    state_.openAIKeySaved = false;
    setInsight("OpenAI key removed from Keychain.");
    return record(Outcome::done("Removed OpenAI API key."));
}

void Provider::clearOldInput() {
    if (!isInputNew_) {
        openAIKeyInput_ = {};
    }
}

void Provider::setKeyBusy(bool isBusy) {
    state_.isKeyBusy = isBusy;
    observable_->changed();
}

// The settings ------------------------------------------------------------------------------------

void Provider::setAIRedactProcessDetails(bool redacts) {
    dependencies_.services.settings.set(&Settings::aiRedactProcessDetails, redacts);
}

void Provider::setAIRequirePreview(bool isRequired) {
    dependencies_.services.settings.set(&Settings::aiRequirePreview, isRequired);
}

Outcome Provider::setAIEndpoint(std::string_view address) {
    if (!endpointFrom(address)) {
        return record(
            Outcome::refused("An endpoint is an https address, or http on this machine alone, "
                             "without a user name or a query."));
    }
    dependencies_.services.settings.set(&Settings::aiEndpoint,
                                        std::string(trimmingWhiteSpace(address)));
    return Outcome::done();
}

std::string Provider::serviceName() const {
    const auto endpoint = presentConsent().endpoint;
    return endpoint ? endpoint->service : std::string();
}

// The analysis ------------------------------------------------------------------------------------

Provider::Consent Provider::presentConsent() const {
    const Settings& settings = dependencies_.services.settings.values();
    return {endpointFrom(settings.aiEndpoint), settings.aiRedactProcessDetails};
}

bool Provider::isConnected() const {
    const auto endpoint = presentConsent().endpoint;
    return state_.openAIKeySaved ||
           (endpoint && !endpoint->needsKey && dependencies_.key.hasExchange());
}

Outcome Provider::requestAIAnalysis() {
    if (state_.aiBusy) {
        return Outcome::ignored();
    }
    if (!isConnected()) {
        if (!isLookingForKey_) {
            return composeOnDeviceAnalysis(false);
        }
        setBusy(AnalysisWait::search);
        return Outcome::asked();
    }
    if (!dependencies_.services.settings.values().aiRequirePreview) {
        return sendAIAnalysis();
    }
    return dependencies_.sample.snapshot() ? askForConsent() : refuseWithoutSample();
}

Outcome Provider::requestAIAnalysisWithKey() {
    if (isLookingForKey_ && !state_.aiBusy) {
        isWantedWithKey_ = true;
        return Outcome::asked();
    }
    return state_.openAIKeySaved ? requestAIAnalysis() : Outcome::ignored();
}

Outcome Provider::refuseWithoutSample() {
    setAnswer("No diagnostic sample is available yet.");
    return Outcome::refused(state_.aiInsight);
}

Outcome Provider::askForConsent() {
    const Consent consent = presentConsent();
    if (!consent.endpoint) {
        return sendAIAnalysis();  // which sends nothing, so there is nothing to ask
    }
    const std::string& service = consent.endpoint->service;
    dependencies_.services.confirmations.requestConfirmation(
        {.id = UUID::random(),
         .title = fmt::format("Send diagnostics to {}?", service),
         .message =
             fmt::format("Tallowcrest will send the current diagnostics report to {} for analysis. "
                         "API keys are never included. Process details are {}.",
                         service, consent.isRedacted ? "redacted" : "included"),
         .confirmTitle = "Analyze",
         .kind = std::string(confirmationKind),
         .hostName = {},
         .pid = {}},
        {}, std::make_shared<Consent>(consent));
    return Outcome::asked();
}

Outcome Provider::sendAIAnalysis() {
    if (state_.aiBusy) {
        return Outcome::ignored();
    }
    return dependencies_.key.readAccess(
        jobs_, [this] { setBusy(AnalysisWait::key); },
        [endpoint = presentConsent().endpoint] { return endpoint; },
        [this](std::optional<ProviderAccess> access) {
            return sendAIAnalysisWith(std::move(access));
        });
}

Outcome Provider::sendAIAnalysisWith(std::optional<ProviderAccess> access) {
    if (!access) {
        setIdle();
        return composeOnDeviceAnalysis(false);
    }
    auto report = dependencies_.reports.diagnosticsReport(access->isRedacted);
    if (!report) {
        setIdle();
        return refuseWithoutSample();
    }
    if (!access->endpoint) {
        setIdle();
        return fallBack();
    }
    state_.askedService = access->endpoint->service;
    setBusy(AnalysisWait::service);
    dependencies_.suggestions.setAIActions({});
    setInsight(fmt::format("Asking {} for a performance recommendation...", state_.askedService));
    jobs_.run(
        Lane::advisor,
        [access = *std::move(access),
         report = *std::move(report)](const Stop& stop) -> AnalysisResult {
            const auto result = postAnalysisRequest(access, report, stop.stopToken());
            if (!result) {
                return std::nullopt;
            }
            if (const auto* error = std::get_if<AIError>(&*result)) {
                return *error;
            }
            // A reply can be long, so it is read here.
            return parseAdvisorOutput(std::get<std::string>(*result));
        },
        // The owner's switch as it is now: a later change does not affect this request.
        [this, runsSafeAction = dependencies_.services.settings.values().aiSafeActionsEnabled](
            AnalysisResult result) { finishAIAnalysis(std::move(result), runsSafeAction); });
    return Outcome::asked();
}

void Provider::finishAIAnalysis(AnalysisResult result, bool runsSafeAction) {
    setIdle();
    if (!result) {
        composeOnDeviceAnalysis(false);
        return;
    }
    auto* const output = std::get_if<AdvisorOutput>(&*result);
    if (output == nullptr) {
        fallBack();
        return;
    }
    Suggestions& suggestions = dependencies_.suggestions;
    setAnswer(output->summary, true);
    suggestions.setAIActions(output->suggestions);
    suggestions.clearApprovals();
    dependencies_.drafts.generateRuleDrafts(output->suggestions);
    suggestions.applyAdvisorAutonomy();
    dependencies_.services.log.recordEvent(
        ActivityKind::ai, std::string(firstCharacters(output->summary, recordedCharacters)));
    if (runsSafeAction) {
        suggestions.runFirstSafeSuggestion();
    }
}

Outcome Provider::fallBack() {
    Outcome outcome = composeOnDeviceAnalysis(true);
    dependencies_.services.log.recordEvent(
        ActivityKind::localAnalysis, "Paid AI was unavailable; used on-device guidance instead.");
    return outcome;
}

Outcome Provider::analyzeOnThisMachine() {
    return composeOnDeviceAnalysis(false);
}

Outcome Provider::composeOnDeviceAnalysis(bool fellBack) {
    const auto& snapshot = dependencies_.sample.snapshot();
    if (!snapshot) {
        setAnswer("No diagnostic sample is available yet. Refresh once, then analyze again.");
        return Outcome::refused(state_.aiInsight);
    }
    const Services& services = dependencies_.services;
    const std::string text =
        onDeviceAnalysis(guidanceFacts(*snapshot, services.settings.values(), services.locale));
    setAnswer((fellBack ? "Paid AI is currently unavailable, so Tallowcrest used on-device "
                          "analysis instead. "
                        : "On-device analysis: ") +
              text);
    dependencies_.suggestions.setAIActions({});
    dependencies_.suggestions.clearApprovals();
    services.log.recordEvent(ActivityKind::localAnalysis,
                             std::string(firstCharacters(text, recordedCharacters)));
    return record(Outcome::done(fellBack ? "Completed on-device fallback analysis."
                                         : "Completed on-device analysis."));
}

Outcome Provider::copyAIPreview() {
    const auto report = dependencies_.reports.diagnosticsReport(
        dependencies_.services.settings.values().aiRedactProcessDetails);
    return report ? dependencies_.pasteboard.copyToPasteboard(*report,
                                                              "Copied the AI diagnostics preview.")
                  : record(Outcome::refused("No AI payload preview is available yet."));
}

void Provider::setAnswer(std::string text, bool isOfService) {
    ++state_.answers;
    state_.isOfService = isOfService;
    setInsight(std::move(text));
}

void Provider::setInsight(std::string text) {
    isInsightInitial_ = false;
    state_.aiInsight = std::move(text);
    observable_->changed();
}

void Provider::setBusy(AnalysisWait waitsFor) {
    state_.aiBusy = true;
    state_.waitsFor = waitsFor;
    state_.aiBusySince = dependencies_.services.clock.now();
    observable_->changed();
}

void Provider::setIdle() {
    state_.aiBusy = false;
    observable_->changed();
}

Outcome Provider::record(Outcome outcome) const {
    return dependencies_.services.log.record(std::move(outcome));
}

}  // namespace tallowcrest
