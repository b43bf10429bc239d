#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <QString>

#include "actions/review_target.h"
#include "core/local_records.h"
#include "sampling/protection.h"

/// The texts of the Cleanup step about the process under review. Figures are in the locale's number
/// format; one that is not finite counts as 0. Main thread.
namespace tallowcrest::optimize_lines {

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

/// The selected group with its figures in the latest sample. A group that is not in the sample has
/// no figures; without a group, the value says that there is no summary.
GroupCard groupCard(const std::optional<std::string>& group, std::span<const AppImpact> groups);

/// "Protected" or "Manual"
QString risk(bool isProtected);

/// The rows of a group in impact order, the heaviest first. `impactOrder` holds indexes of
/// `processes`.
std::vector<ProcessSample> helperProcesses(const std::vector<ProcessSample>& processes,
                                           const std::vector<std::size_t>& impactOrder,
                                           std::string_view group);

/// What the card shows of a process under review.
struct Target {
    GroupCard groupCard;
    QString risk;
    std::optional<std::string> group;  ///< absent: there is nothing to put on the Never Quit list
    bool isNeverQuit = false;          ///< whether the group is on that list
    std::vector<ProcessSample> helpers;
    std::optional<std::int64_t> selectedPID;  ///< absent when the process is not in the sample
};

/// A button that asks whether to quit something.
struct QuitButton {
    bool isEnabled = false;
    QString description;  ///< what it asks, or why it is disabled

    bool operator==(const QuitButton&) const = default;
};

/// For the process under review. `name` is empty while nothing is selected.
QuitButton quitProcess(std::string_view name, bool isProtected, bool isRunning);

/// For the group under review, `members` of whose processes may be quit. `group` is absent while
/// none is selected.
QuitButton quitApp(const std::optional<std::string>& group, bool isNeverQuit, std::int64_t members);

/// What the card of the process under review shows.
struct Offender {
    QString heading;
    QString explanation;
    std::optional<Target> target;  ///< absent while nothing is selected
    QuitButton quitProcess = {};
    QuitButton quitApp = {};
};

/// The selection and the sample that the card is about. The references must outlive the value.
struct OffenderFacts {
    std::optional<std::int64_t> selectedPID;        ///< absent when nothing is selected
    const ProcessSample* selectedRow = nullptr;     ///< null when it is not in the latest table
    const std::optional<std::string>& group;        ///< of the selected process
    SelectedTargetSummary summary;                  ///< of the selected process
    const std::optional<SystemSnapshot>& snapshot;  ///< absent before the first sample
    const std::vector<ProcessSample>& latestProcesses;
    const std::vector<std::size_t>& impactOrder;  ///< indexes of `latestProcesses`
    const ProtectedAppNames& protectedAppNames;
    ProtectionPolicy protection;
};

/// Without a selection, the explanation says what to do, or that the first sample is being taken.
Offender offender(const OffenderFacts& facts);

}  // namespace tallowcrest::optimize_lines
