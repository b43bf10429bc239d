#include "presentation/widgets/reserved_rows.h"

#include <algorithm>

namespace tallowcrest {

void ReservedRows::setNeeded(int needed, double time) {
    if (time == countedTime_) {
        return;
    }
    countedTime_ = time;
    if (needed >= count_) {
        count_ = needed;
        samplesWithRoom_ = 0;
        mostNeeded_ = 0;
        return;
    }
    mostNeeded_ = std::max(mostNeeded_, needed);
    if (++samplesWithRoom_ >= samplesUntilShrink) {
        count_ = mostNeeded_;
        samplesWithRoom_ = 0;
        mostNeeded_ = 0;
    }
}

}  // namespace tallowcrest
