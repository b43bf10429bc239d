#pragma once

#include <optional>

namespace tallowcrest {

/// The number of rows that a list reserves space for, so that the widgets below it do not move with
/// every row that comes or goes. It grows at once, and shrinks after a minute in which fewer rows
/// were needed. Main thread.
class ReservedRows {
public:
    /// A minute, at one sample in 4 seconds.
    static constexpr int samplesUntilShrink = 15;

    int count() const { return count_; }

    /// Sets how many rows the sample taken at `time`, in seconds, needs. Further calls with the
    /// same time as the call before are ignored.
    void setNeeded(int needed, double time);

private:
    std::optional<double> countedTime_;
    int count_ = 0;
    int samplesWithRoom_ = 0;  ///< in a row that needed fewer than `count_`
    int mostNeeded_ = 0;       ///< by these samples
};

}  // namespace tallowcrest
