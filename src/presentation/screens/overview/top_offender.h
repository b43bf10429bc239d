#pragma once

#include <optional>

#include <QString>

#include "core/local_records.h"

namespace tallowcrest {

/// What the overview says about the heaviest application group.
struct TopOffender {
    enum class State { unknown, stable, offender };

    State state = State::unknown;
    QString title;   ///< empty when the detail stands alone
    QString detail;  ///< empty when the title stands alone

    bool operator==(const TopOffender&) const = default;
};

/// Load counts as high when the CPU percentage or the memory pressure is at or over
/// `warningThreshold` (percent). Without a sample, or with one that has no groups, nothing can be
/// told. Any thread.
TopOffender topOffender(const std::optional<SystemSnapshot>& snapshot, double warningThreshold);

/// "3 Remote Alerts"; empty when no remote machine needs attention. Any thread.
QString remoteAlerts(int machinesThatNeedAttention);

}  // namespace tallowcrest
