#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include <QString>

#include "core/local_records.h"

/// What the Cleanup step says about the process under review. Pure; any thread.
namespace tallowcrest::selected_offender {

/// What stands in place of an explanation while nothing is selected.
QString hint();

/// "Selected Offender: NAME"; "Selected Offender" for an empty name.
QString heading(std::string_view name);

/// What the process takes now and whether it may be asked to quit. Figures are in the locale's
/// number format; one that is not finite counts as 0.
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

/// Whole megabytes, in the locale's number format: "2,048 MB".
QString wholeMegabytes(double megabytes);

}  // namespace tallowcrest::selected_offender
