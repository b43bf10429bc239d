#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <QString>

#include "actions/review_target.h"
#include "core/local_records.h"
#include "sampling/latest_sample.h"
#include "sampling/protection.h"

/// What the Cleanup step says about the process under review. Figures are in the locale's number
/// format; one that is not finite counts as 0. Main thread, because that is where the review is.
namespace tallowcrest::cleanup_lines {

/// "Selected Offender: NAME"; "Selected Offender" for an empty name.
QString heading(std::string_view name);

/// What the process uses now and whether it may be asked to quit.
QString sentence(const ProcessSample& process, bool isProtected);

/// The "App Group" card.
struct GroupCard {
    QString value;
    QString detail;  ///< may be empty

    bool operator==(const GroupCard&) const = default;
};

/// The selected group among those of the latest sample. A group that is not among them is named
/// without figures.
GroupCard groupCard(const std::optional<std::string>& group, std::span<const AppImpact> groups);

/// "Protected" or "Manual"
QString risk(bool isProtected);

/// The processes of a group, the heaviest first.
std::vector<ProcessSample> helperProcesses(const LatestSample& sample, std::string_view group);

/// What the card shows of a process under review.
struct Target {
    GroupCard groupCard;
    QString risk;
    std::optional<std::string> group;  ///< absent: there is nothing to put on the Never Quit list
    bool isNeverQuit = false;          ///< whether the group is on that list
    std::vector<ProcessSample> helpers;
    std::optional<std::int64_t> selectedPID;  ///< absent when the process is not in the sample
    ProtectedAppNames protectedAppNames;
};

/// What the card of the process under review shows.
struct Offender {
    QString heading;
    QString explanation;
    std::optional<Target> target;  ///< absent while nothing is selected
};

Offender offender(const ReviewTarget& review, const LatestSample& sample,
                  const ProtectedAppNames& protectedAppNames);

}  // namespace tallowcrest::cleanup_lines
