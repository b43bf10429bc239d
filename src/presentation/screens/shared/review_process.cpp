#include "presentation/screens/shared/review_process.h"

#include "actions/review_target.h"
#include "presentation/state/window_state.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/process_filter.h"
#include "sampling/process_details.h"

namespace tallowcrest {

void clearHidingFilter(const ReviewTarget& review, const ProcessDetails& details,
                       Navigation& navigation) {
    const ProcessSample* row = review.selectedRow();
    const auto detailOf = [&details](const ProcessSample& each) { return details.find(each); };
    const QString filter = dashboard_text::text(navigation.processFilter());
    if (row != nullptr && filteredProcesses({*row}, filter, detailOf).empty()) {
        navigation.setProcessFilter({});
    }
}

void reviewInProcesses(std::int64_t pid, ReviewTarget& review, const ProcessDetails& details,
                       Navigation& navigation) {
    // It may have ended, while the sample without it is not on screen yet.
    if (review.selectProcessWithPID(pid).isAccepted()) {
        clearHidingFilter(review, details, navigation);
        navigation.setSelectedRoute(AppRoute::load);
    }
}

}  // namespace tallowcrest
