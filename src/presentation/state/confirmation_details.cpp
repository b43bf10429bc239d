#include "presentation/state/confirmation_details.h"

#include "advisor/advisor.h"
#include "core/local_records.h"
#include "disk/disk.h"
#include "disk/disk_receipts.h"
#include "disk/personal_file_texts.h"
#include "monitor/system_monitor.h"
#include "presentation/state/advisor_payload.h"
#include "presentation/words/disk_lines.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

ConfirmationDetails confirmationDetails(SystemMonitor& monitor,
                                        const ConfirmationRequest& request) {
    if (request.kind == Provider::confirmationKind) {
        return {.name = u"What Is Sent"_s,
                .description = u"Shows all that would leave this machine, below"_s,
                .text = advisorPayload(monitor)};
    }
    // No file is moved that was not shown, so these are shown at once.
    if (const auto& plan = monitor.disk().autopilot.state().diskCleanupPlan;
        request.kind == disk_receipts::confirmationKind && plan) {
        return {.name = planSummary(*plan),
                .description = u"Shows all files that would be moved to Trash, below"_s,
                .text = planFiles(*plan),
                .areShown = true};
    }
    if (const auto& file = monitor.disk().files.state().pendingStorageSuggestion;
        request.kind == personal_file_texts::confirmationKind && file) {
        return {.name = u"File · "_s + sizeText(file->bytes),
                .description = u"Shows the file that would be moved to Trash, below"_s,
                .text = boundedPath(file->path),
                .areShown = true};
    }
    return {};
}

}  // namespace tallowcrest
