#include "sampling/app_impact.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <unordered_map>
#include <utility>

#include "sampling/impact_order.h"
#include "sampling/lowered_name.h"
#include "sampling/stable_order.h"

namespace tallowcrest {
namespace {

// Groups of names --------------------------------------------------------------------------------

struct GroupRule {
    constexpr GroupRule(std::string_view text, std::string_view name, bool equal = false)
        : needle(text), group(name), whole(equal) {}

    NameNeedle needle;
    std::string_view group;
    bool whole;  ///< the name must equal the needle, not just contain it
};

constexpr bool wholeName = true;

/// The first matching rule decides. Matches are deliberately broad ("search" belongs to "Arc"):
/// counts, recommendations and the Never Quit list all use these groups.
constexpr std::array groupRules{
    GroupRule{"google chrome", "Google Chrome"},
    GroupRule{"chrome helper", "Google Chrome"},
    GroupRule{"chrome", "Google Chrome", wholeName},
    GroupRule{"safari", "Safari"},
    GroupRule{"webkit", "Safari"},
    GroupRule{"firefox", "Firefox"},
    GroupRule{"arc", "Arc"},
    GroupRule{"docker", "Docker"},
    GroupRule{"com.docker", "Docker"},
    GroupRule{"electron", "Electron Apps"},
    GroupRule{"node", "Node.js"},
    GroupRule{"python", "Python"},
    GroupRule{"swift", "Developer Tools"},
    GroupRule{"xcode", "Developer Tools"},
    GroupRule{"clang", "Developer Tools"},
    GroupRule{"virtualization", "Virtualization"},
    GroupRule{"virtualmachine", "Virtualization"},
};

/// The group, as a view into the rules or into `name`. `scratch` is working space that the caller
/// reuses, to avoid an allocation for each name.
std::string_view groupOf(std::string_view name, LoweredName& scratch) {
    scratch.assign(name);
    for (const GroupRule& rule : groupRules) {
        if (rule.whole ? scratch.equals(rule.needle) : scratch.contains(rule.needle)) {
            return rule.group;
        }
    }
    return name;
}

// The impact orders ------------------------------------------------------------------------------

/// The sort key of a row, copied out of it: in a large table, following a pointer for each
/// comparison would cost more than the comparison.
struct RankedProcess {
    RankedProcess() = default;
    explicit RankedProcess(const ProcessSample& sample)
        : cpu(sample.cpu), rssMB(sample.rssMB), row(&sample) {}

    double cpu = 0.0;
    double rssMB = 0.0;
    const ProcessSample* row = nullptr;
};

// Groups -----------------------------------------------------------------------------------------

constexpr std::size_t noRow = std::numeric_limits<std::size_t>::max();

/// A group while it is collected. Its members form a linked list in the order of the table.
struct Group {
    std::string_view name;
    std::int64_t processCount = 0;
    std::int64_t protectedCount = 0;
    double totalCPU = 0.0;
    double totalMemoryMB = 0.0;
    std::size_t firstRow = noRow;
    std::size_t lastRow = noRow;

    bool isListed() const {
        constexpr double minimumCPU = 1.0;
        constexpr double minimumMemoryMB = 80.0;
        return totalCPU >= minimumCPU || totalMemoryMB >= minimumMemoryMB;
    }
};

/// The rows by group, the groups in the order of their first rows.
class GroupedRows {
public:
    GroupedRows(const std::vector<ProcessSample>& rows, const ProtectionPolicy& policy)
        : rows_(rows), nextRow_(rows.size(), noRow), protectedRow_(rows.size()) {
        std::unordered_map<std::string_view, std::size_t> groupIndexes;
        LoweredName scratch;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const std::string_view name = groupOf(rows[i].displayName(), scratch);
            const auto [found, isNew] = groupIndexes.try_emplace(name, groups_.size());
            if (isNew) {
                groups_.push_back(Group{name});
            }
            protectedRow_[i] = isProtected(rows[i], policy);
            append(groups_[found->second], i);
        }
    }

    const std::vector<Group>& groups() const { return groups_; }

    /// The group's heaviest unprotected process, or its heaviest process when all are protected.
    std::int64_t topPID(const Group& group, bool nameProtected) const {
        const bool anySafe = !nameProtected && group.protectedCount < group.processCount;
        std::vector<RankedProcess> pool;
        for (std::size_t i = group.firstRow; i != noRow; i = nextRow_[i]) {
            if (!anySafe || !protectedRow_[i]) {
                pool.emplace_back(rows_[i]);
            }
        }
        return stableFirst(std::move(pool), ProcessBefore()).row->pid;
    }

private:
    void append(Group& group, std::size_t index) {
        const ProcessSample& row = rows_[index];
        ++group.processCount;
        group.protectedCount += protectedRow_[index] ? 1 : 0;
        group.totalCPU += row.cpu;
        group.totalMemoryMB += row.rssMB;
        (group.firstRow == noRow ? group.firstRow : nextRow_[group.lastRow]) = index;
        group.lastRow = index;
    }

    const std::vector<ProcessSample>& rows_;
    std::vector<Group> groups_;
    std::vector<std::size_t> nextRow_;
    std::vector<bool> protectedRow_;
};

}  // namespace

std::string normalizedAppName(std::string_view name) {
    LoweredName scratch;
    return std::string(groupOf(name, scratch));
}

std::string appGroupName(const ProcessSample& row) {
    return normalizedAppName(row.displayName());
}

std::vector<std::size_t> impactOrder(const std::vector<ProcessSample>& rows) {
    std::vector<RankedProcess> order(rows.begin(), rows.end());
    stableOrder(order, ProcessBefore());
    std::vector<std::size_t> indexes;
    indexes.reserve(order.size());
    for (const RankedProcess& process : order) {
        indexes.push_back(static_cast<std::size_t>(process.row - rows.data()));
    }
    return indexes;
}

std::vector<ProcessSample> rowsInOrder(const std::vector<ProcessSample>& rows,
                                       const std::vector<std::size_t>& order, std::size_t limit) {
    const std::size_t count = std::min(limit, order.size());
    std::vector<ProcessSample> result;
    result.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        result.push_back(rows[order[i]]);
    }
    return result;
}

std::vector<AppImpact> buildAppImpacts(const std::vector<ProcessSample>& rows,
                                       const ProtectedAppNames& protectedAppNames,
                                       const ProtectionPolicy& policy) {
    const GroupedRows grouped(rows, policy);
    std::vector<AppImpact> impacts;
    for (const Group& group : grouped.groups()) {
        if (!group.isListed()) {
            continue;
        }
        AppImpact impact{.name = std::string(group.name),
                         .processCount = group.processCount,
                         .totalCPU = group.totalCPU,
                         .totalMemoryMB = group.totalMemoryMB,
                         .topPID = std::nullopt,
                         .protectedCount = group.protectedCount};
        const bool nameProtected = protectedAppNames.contains(impact.name);
        impact.topPID = grouped.topPID(group, nameProtected);
        if (nameProtected) {
            impact.protectedCount = group.processCount;
        }
        impacts.push_back(std::move(impact));
    }

    std::vector<AppImpact*> order;
    order.reserve(impacts.size());
    for (AppImpact& impact : impacts) {
        order.push_back(&impact);
    }
    stableOrder(order,
                [](const AppImpact* a, const AppImpact* b) { return GroupBefore()(*a, *b); });
    std::vector<AppImpact> ranked;
    ranked.reserve(order.size());
    for (AppImpact* impact : order) {
        ranked.push_back(std::move(*impact));
    }
    return ranked;
}

std::vector<AppImpact> listedAppImpacts(const std::vector<ProcessSample>& rows,
                                        const ProtectedAppNames& protectedAppNames,
                                        const ProtectionPolicy& policy) {
    std::vector<AppImpact> groups = buildAppImpacts(rows, protectedAppNames, policy);
    groups.resize(std::min(groups.size(), maximumAppImpacts));
    return groups;
}

}  // namespace tallowcrest
