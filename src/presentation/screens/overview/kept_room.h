#pragma once

#include <algorithm>
#include <optional>

#include "core/date.h"

namespace tallowcrest {

/// How many rows a list keeps room for, so that what lies below it does not follow every row that
/// comes and goes: room is made at once and given back only when it was not needed for a minute.
class KeptRoom {
public:
    /// A minute, at one sample in 4 seconds.
    static constexpr int patience = 15;

    int rows() const { return rows_; }

    /// What the sample of that instant needs. Only the first call for an instant counts.
    void setNeeded(int needed, Date sampledAt) {
        if (sampledAt == countedSample_) {
            return;
        }
        countedSample_ = sampledAt;
        if (needed >= rows_) {
            rows_ = needed;
            calmSamples_ = 0;
            neededSince_ = 0;
            return;
        }
        neededSince_ = std::max(neededSince_, needed);
        if (++calmSamples_ >= patience) {
            rows_ = neededSince_;
            calmSamples_ = 0;
            neededSince_ = 0;
        }
    }

private:
    std::optional<Date> countedSample_;
    int rows_ = 0;
    int calmSamples_ = 0;
    int neededSince_ = 0;  ///< the most that was needed since the room was last full
};

}  // namespace tallowcrest
