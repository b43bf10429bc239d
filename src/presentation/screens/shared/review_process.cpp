#include "presentation/screens/shared/review_process.h"

#include <optional>

#include "actions/review_target.h"
#include "presentation/state/window_state.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/process_filter.h"
#include "sampling/latest_sample.h"

namespace tallowcrest {

void clearHidingFilter(const LatestSample& sample, const ReviewTarget& review,
                       Navigation& navigation, const DetailOf& detailOf) {
    const std::optional<std::int64_t> pid = review.selectedPID();
    const ProcessSample* row = pid ? findProcess(sample.latestProcesses(), *pid) : nullptr;
    const QString filter = dashboard_text::text(navigation.processFilter());
    if (row != nullptr && filteredProcesses({*row}, filter, detailOf).empty()) {
        navigation.setProcessFilter({});
    }
}

void reviewInProcesses(std::int64_t pid, const LatestSample& sample, ReviewTarget& review,
                       Navigation& navigation) {
    // It may have ended, while the sample without it is not on screen yet.
    if (review.selectProcessWithPID(pid).isAccepted()) {
        clearHidingFilter(sample, review, navigation);
        navigation.setSelectedRoute(AppRoute::load);
    }
}

}  // namespace tallowcrest
