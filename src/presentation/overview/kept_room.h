#pragma once

#include <algorithm>

namespace tallowcrest {

/// How many rows a list keeps room for, so that what lies below it does not follow every row that
/// comes and goes: room is made at once and given back only when it was not needed for a minute.
class KeptRoom {
public:
    /// A minute, at one sample in 4 seconds.
    static constexpr int patience = 15;

    int rows() const { return rows_; }

    /// Called with what each new sample needs.
    void setNeeded(int needed) {
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
    int rows_ = 0;
    int calmSamples_ = 0;
    int neededSince_ = 0;  ///< the most that was needed since the room was last full
};

}  // namespace tallowcrest
