#include "presentation/state/confirmation_details.h"

#include "advisor/advisor.h"
#include "core/activity_log.h"
#include "core/confirmation_desk.h"
#include "core/local_records.h"
#include "core/settings/settings_owner.h"
#include "disk/disk.h"
#include "disk/disk_receipts.h"
#include "disk/personal_file_texts.h"
#include "monitor/system_monitor.h"
#include "presentation/state/advisor_payload.h"
#include "presentation/words/disk_lines.h"
#include "remote/remote.h"
#include "sampling/latest_sample.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

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
                .description = u"Shows all that would leave this machine, below"_s,
                .text = advisorPayload(monitor),
                .note = u"The report is made anew when it is sent."_s,
                .followState = true};
    }
    // No file is moved that was not shown, so these are shown at once.
    if (const auto& plan = monitor.disk().autopilot.state().diskCleanupPlan;
        request.kind == disk_receipts::confirmationKind && plan) {
        return {.name = planSummary(*plan),
                .description = u"Shows all files that would be moved to Trash, below"_s,
                .text = planFiles(*plan),
                .note = {},
                .areShown = true};
    }
    if (const auto& file = monitor.disk().files.state().pendingStorageSuggestion;
        request.kind == personal_file_texts::confirmationKind && file) {
        return {.name = u"File · "_s + sizeText(file->bytes),
                .description = u"Shows the file that would be moved to Trash, below"_s,
                .text = boundedPath(file->path),
                .note = {},
                .areShown = true};
    }
    return {};
}

}  // namespace tallowcrest
