#include "advisor/provider.h"

#include <cstddef>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "actions/desktop_actions.h"
#include "advisor/endpoint.h"
#include "advisor/guidance.h"
#include "advisor/openai_key.h"
#include "advisor/provider_exchange.h"
#include "advisor/rule_drafts.h"
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

constexpr std::string_view noSample = "No diagnostic sample is available yet.";

std::string serviceOf(std::string_view address) {
    const auto endpoint = endpointFrom(address);
    return endpoint ? endpoint->service : "an unknown service";
}

}  // namespace

Provider::Provider(Dependencies dependencies)
    : dependencies_(std::move(dependencies)),
      observable_(std::make_unique<Observable>(dependencies_.services.jobs.mainQueue())),
      jobs_(dependencies_.services.jobs) {
    state_.aiInsight =
        "Local recommendations are active. Connect paid AI for deeper explanations and follow-up "
        "questions.";
    dependencies_.services.confirmations.registerKind(
        std::string(confirmationKind),
        {.confirm =
             [this](const ConfirmationRequest& /*request*/, void* held) {
                 // The settings can have changed while the question was open.
                 const bool isAgreed = *static_cast<const Consent*>(held) == presentConsent();
                 return isAgreed ? sendAIAnalysis() : requestAIAnalysis();
             },
         .cancel = {}});
    lookForKey();
}

Provider::~Provider() = default;

void Provider::lookForKey() {
    if (dependencies_.ports.secrets == nullptr) {
        return;
    }
    setKeyBusy(true);
    jobs_.run(
        Lane::secrets,
        [secrets = dependencies_.ports.secrets](const Stop&) { return secrets->isStored(); },
        [this](bool isStored) {
            setKeyBusy(false);
            state_.openAIKeySaved = isStored;
            if (isStored && isInsightInitial_) {
                state_.aiInsight = "Enhanced AI recommendations are ready.";
            }
        });
}

// The key -----------------------------------------------------------------------------------------

void Provider::setOpenAIKeyInput(SecretText text) {
    openAIKeyInput_ = std::move(text);
    observable_->changed();
}

Outcome Provider::saveOpenAIKey() {
    if (state_.isKeyBusy) {
        return Outcome::ignored();
    }
    auto key = validatedOpenAIKey(openAIKeyInput_.view());
    if (!key) {
        setInsight("That does not look like an OpenAI API key.");
        return Outcome::refused(state_.aiInsight);
    }
    if (dependencies_.ports.secrets == nullptr) {
        finishSavingKey(false);
        return Outcome::failed(state_.aiInsight);
    }
    setKeyBusy(true);
    jobs_.run(
        Lane::secrets,
        [secrets = dependencies_.ports.secrets, key = *std::move(key)](const Stop&) {
            secrets->remove();
            return secrets->add(key);
        },
        [this](bool isSaved) { finishSavingKey(isSaved); });
    return Outcome::asked();
}

void Provider::finishSavingKey(bool isSaved) {
    setKeyBusy(false);
    if (!isSaved) {
        setInsight("Could not save the key in Keychain.");
        return;
    }
    openAIKeyInput_ = {};
    state_.openAIKeySaved = true;
    setInsight("OpenAI key saved in Keychain. AI recommendations are ready.");
    record(Outcome::done("Saved OpenAI API key in Keychain."));
}

Outcome Provider::removeOpenAIKey() {
    if (state_.isKeyBusy) {
        return Outcome::ignored();
    }
    if (dependencies_.ports.secrets == nullptr) {
        finishRemovingKey(true);
        return Outcome::done();
    }
    setKeyBusy(true);
    jobs_.run(
        Lane::secrets,
        [secrets = dependencies_.ports.secrets](const Stop&) { return secrets->remove(); },
        [this](bool isRemoved) { finishRemovingKey(isRemoved); });
    return Outcome::asked();
}

void Provider::finishRemovingKey(bool isRemoved) {
    setKeyBusy(false);
    if (!isRemoved) {
        setInsight("Could not remove the key from Keychain.");
        return;
    }
    openAIKeyInput_ = {};
    state_.openAIKeySaved = false;
    setInsight("OpenAI key removed from Keychain.");
    record(Outcome::done("Removed OpenAI API key."));
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
    return serviceOf(dependencies_.services.settings.values().aiEndpoint);
}

// The analysis ------------------------------------------------------------------------------------

Provider::Consent Provider::presentConsent() const {
    const Settings& settings = dependencies_.services.settings.values();
    return {settings.aiEndpoint, settings.aiRedactProcessDetails};
}

Outcome Provider::requestAIAnalysis() {
    if (!state_.openAIKeySaved) {
        return composeOnDeviceAnalysis(false);
    }
    if (!dependencies_.services.settings.values().aiRequirePreview) {
        return sendAIAnalysis();
    }
    if (!dependencies_.sample.snapshot()) {
        setInsight(std::string(noSample));
        return Outcome::refused(std::string(noSample));
    }
    return askForConsent();
}

Outcome Provider::askForConsent() {
    const Consent consent = presentConsent();
    const std::string service = serviceName();
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
    if (dependencies_.ports.secrets == nullptr) {
        return composeOnDeviceAnalysis(false);
    }
    setBusy(true);
    jobs_.run(
        Lane::secrets,
        [secrets = dependencies_.ports.secrets](const Stop&) { return readOpenAIKey(*secrets); },
        [this, consent = presentConsent()](std::optional<SecretText> key) {
            sendAIAnalysisWith(std::move(key), consent);
        });
    return Outcome::asked();
}

void Provider::sendAIAnalysisWith(std::optional<SecretText> key, const Consent& consent) {
    if (!key) {
        setBusy(false);
        composeOnDeviceAnalysis(false);
        return;
    }
    auto report = dependencies_.reports.diagnosticsReport(consent.isRedacted);
    if (!report) {
        setBusy(false);
        setInsight(std::string(noSample));
        return;
    }
    const Settings& settings = dependencies_.services.settings.values();
    setBusy(true);  // anew, as the exchange begins here
    dependencies_.suggestions.setAIActions({});
    setInsight(
        fmt::format("Asking {} for a performance recommendation...", serviceOf(consent.endpoint)));
    jobs_.run(
        Lane::advisor,
        [access = ProviderAccess{dependencies_.ports.http, endpointFrom(consent.endpoint),
                                 *std::move(key), settings.openAIModel},
         report = *std::move(report)](const Stop& stop) -> AnalysisResult {
            const ProviderResult result = postAnalysisRequest(access, report, stop.stopToken());
            if (const auto* error = std::get_if<AIError>(&result)) {
                return *error;
            }
            // A reply can be long, so it is read here.
            return parseAdvisorOutput(std::get<std::string>(result));
        },
        // The owner's switch as it is now: a later change does not affect this request.
        [this, runsSafeAction = settings.aiSafeActionsEnabled](AnalysisResult result) {
            finishAIAnalysis(std::move(result), runsSafeAction);
        });
}

void Provider::finishAIAnalysis(AnalysisResult result, bool runsSafeAction) {
    setBusy(false);
    Suggestions& suggestions = dependencies_.suggestions;
    ActivityLog& log = dependencies_.services.log;
    auto* const output = std::get_if<AdvisorOutput>(&result);
    if (output == nullptr) {
        composeOnDeviceAnalysis(true);
        suggestions.setAIActions({});
        log.recordEvent(ActivityKind::localAnalysis,
                        "Paid AI was unavailable; used on-device guidance instead.");
        return;
    }
    setInsight(output->summary);
    suggestions.setAIActions(output->suggestions);
    suggestions.clearApprovals();
    dependencies_.drafts.generateRuleDrafts(output->suggestions);
    suggestions.applyAdvisorAutonomy();
    log.recordEvent(ActivityKind::ai,
                    std::string(firstCharacters(output->summary, recordedCharacters)));
    if (runsSafeAction) {
        suggestions.runFirstSafeSuggestion();
    }
}

Outcome Provider::composeOnDeviceAnalysis(bool fellBack) {
    const auto& snapshot = dependencies_.sample.snapshot();
    if (!snapshot) {
        setInsight("No diagnostic sample is available yet. Refresh once, then analyze again.");
        return Outcome::refused(state_.aiInsight);
    }
    const Settings& settings = dependencies_.services.settings.values();
    const std::string text = onDeviceAnalysis({.snapshot = *snapshot,
                                               .warningThreshold = settings.warningThreshold,
                                               .diskMinimumFreeGB = settings.diskMinimumFreeGB,
                                               .locale = dependencies_.services.locale});
    setInsight((fellBack ? "Paid AI is currently unavailable, so Tallowcrest used on-device "
                           "analysis instead. "
                         : "On-device analysis: ") +
               text);
    dependencies_.suggestions.setAIActions({});
    dependencies_.suggestions.clearApprovals();
    dependencies_.services.log.recordEvent(ActivityKind::localAnalysis,
                                           std::string(firstCharacters(text, recordedCharacters)));
    return record(Outcome::done(fellBack ? "Completed on-device fallback analysis."
                                         : "Completed on-device analysis."));
}

Outcome Provider::copyAIPreview() {
    const auto report = dependencies_.reports.diagnosticsReport(presentConsent().isRedacted);
    return report ? dependencies_.pasteboard.copyToPasteboard(*report,
                                                              "Copied the AI diagnostics preview.")
                  : record(Outcome::refused("No AI payload preview is available yet."));
}

void Provider::setInsight(std::string text) {
    isInsightInitial_ = false;
    state_.aiInsight = std::move(text);
    observable_->changed();
}

void Provider::setBusy(bool isBusy) {
    state_.aiBusy = isBusy;
    state_.aiBusySince = dependencies_.services.clock.now();
    observable_->changed();
}

Outcome Provider::record(Outcome outcome) const {
    return dependencies_.services.log.record(std::move(outcome));
}

}  // namespace tallowcrest
