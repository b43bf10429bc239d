#include "presentation/state/confirmation_details.h"

#include "advisor/advisor.h"
#include "advisor/endpoint.h"
#include "core/activity_log.h"
#include "core/confirmation_desk.h"
#include "core/local_records.h"
#include "core/settings/settings_owner.h"
#include "disk/disk.h"
#include "disk/disk_receipts.h"
#include "disk/personal_file_texts.h"
#include "monitor/system_monitor.h"
#include "presentation/state/advisor_payload.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/disk_lines.h"
#include "remote/remote.h"
#include "sampling/latest_sample.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

QString advisorNote(SystemMonitor& monitor) {
    const QString made = u"The report is made anew when it is sent."_s;
    const auto endpoint = endpointFrom(monitor.settings().aiEndpoint);
    // Whatever `openAIKeySaved` says, the key is sent if the store has one by then.
    const bool canKeyBeSent = endpoint && !endpoint->needsKey;
    return canKeyBeSent ? u"A saved key is sent to %1 as its key. "_s.arg(
                              dashboard_text::text(endpoint->service)) +
                              made
                        : made;
}

}  // namespace

std::vector<Observable*> confirmationSources(SystemMonitor& monitor) {
    Advisor& advisor = monitor.advisor();
    return {&monitor.confirmations().observable(), &monitor.sample().observable(),
            &monitor.settingsOwner().observable(), &monitor.log().observable(),
            &advisor.provider.observable(),        &advisor.suggestions.observable(),
            &advisor.trust.observable(),           &monitor.remote().scan.observable()};
}

ConfirmationDetails confirmationDetails(SystemMonitor& monitor,
                                        const ConfirmationRequest& request) {
    if (request.kind == Provider::confirmationKind) {
        return {.name = u"What Is Sent"_s,
                .description = u"The whole text that would be sent, below"_s,
                .text = advisorPayload(monitor),
                .note = advisorNote(monitor),
                .followState = true};
    }
    // No file is moved that was not shown, so these are shown at once.
    if (const auto& plan = monitor.disk().autopilot.state().diskCleanupPlan;
        request.kind == disk_receipts::confirmationKind && plan) {
        return {.name = planSummary(*plan),
                .description = u"All files that would be moved to Trash, below"_s,
                .text = planFiles(*plan),
                .note = {},
                .areShown = true};
    }
    if (const auto& file = monitor.disk().files.state().pendingStorageSuggestion;
        request.kind == personal_file_texts::confirmationKind && file) {
        return {.name = u"File · "_s + sizeText(file->bytes),
                .description = u"The file that would be moved to Trash, below"_s,
                .text = boundedPath(file->path),
                .note = {},
                .areShown = true};
    }
    return {};
}

}  // namespace tallowcrest
