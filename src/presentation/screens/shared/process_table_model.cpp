#include "presentation/screens/shared/process_table_model.h"

#include <unordered_map>
#include <unordered_set>

#include "actions/app_group.h"
#include "presentation/widgets/text_lines.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/process_order.h"
#include "presentation/words/process_words.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using dashboard_text::text;

/// A tip with a command line may be longer than others.
constexpr int mostTipLines = 40;

bool haveSameOrder(const std::vector<ProcessSample>& a, const std::vector<ProcessSample>& b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i].pid != b[i].pid) {
            return false;
        }
    }
    return true;
}

std::unordered_set<std::int64_t> pidsOf(const std::vector<ProcessSample>& rows) {
    std::unordered_set<std::int64_t> pids;
    pids.reserve(rows.size());
    for (const ProcessSample& row : rows) {
        pids.insert(row.pid);
    }
    return pids;
}

/// The first row of each PID, because the model identifies rows by it.
std::vector<ProcessSample> withoutRepeats(std::vector<ProcessSample> rows) {
    std::unordered_set<std::int64_t> seen;
    seen.reserve(rows.size());
    std::erase_if(rows, [&seen](const ProcessSample& row) { return !seen.insert(row.pid).second; });
    return rows;
}

}  // namespace

ProcessTableModel::ProcessTableModel(ProtectionPolicy policy, QObject* parent)
    : QAbstractTableModel(parent), policy_(policy) {}

void ProcessTableModel::setRows(std::vector<ProcessSample> rows) {
    rows = withoutRepeats(std::move(rows));
    if (!haveSameOrder(rows_, rows)) {
        removeMissing(rows);
        appendNew(rows);
    }
    if (haveSameOrder(rows_, rows)) {
        replaceFigures(std::move(rows));
    } else {
        // The view paints all rows again.
        reorder(std::move(rows));
        emit dataChanged(index(0, 0), index(rowCount() - 1, columnTotal - 1));
    }
}

void ProcessTableModel::replaceFigures(std::vector<ProcessSample> rows) {
    const std::vector<ProcessSample> before = std::exchange(rows_, std::move(rows));
    const int end = rowCount();
    const auto isChanged = [&](int row) {
        const auto place = static_cast<std::size_t>(row);
        return before[place] != rows_[place];
    };
    // Most processes rest: only the rows that did something are painted again.
    for (int first = 0; first < end; ++first) {
        if (!isChanged(first)) {
            continue;
        }
        int last = first;
        while (last + 1 < end && isChanged(last + 1)) {
            ++last;
        }
        emit dataChanged(index(first, 0), index(last, columnTotal - 1));
        first = last;
    }
}

void ProcessTableModel::removeMissing(const std::vector<ProcessSample>& rows) {
    const auto kept = pidsOf(rows);
    for (int last = static_cast<int>(rows_.size()) - 1; last >= 0; --last) {
        const auto isMissing = [&](int row) {
            return !kept.contains(rows_[static_cast<std::size_t>(row)].pid);
        };
        if (!isMissing(last)) {
            continue;
        }
        int first = last;
        while (first > 0 && isMissing(first - 1)) {
            --first;
        }
        beginRemoveRows({}, first, last);
        rows_.erase(rows_.begin() + first, rows_.begin() + last + 1);
        endRemoveRows();
        last = first;
    }
}

void ProcessTableModel::appendNew(const std::vector<ProcessSample>& rows) {
    const auto known = pidsOf(rows_);
    std::vector<ProcessSample> fresh;
    for (const ProcessSample& row : rows) {
        if (!known.contains(row.pid)) {
            fresh.push_back(row);
        }
    }
    if (fresh.empty()) {
        return;
    }
    const int first = static_cast<int>(rows_.size());
    beginInsertRows({}, first, first + static_cast<int>(fresh.size()) - 1);
    rows_.insert(rows_.end(), std::make_move_iterator(fresh.begin()),
                 std::make_move_iterator(fresh.end()));
    endInsertRows();
}

void ProcessTableModel::reorder(std::vector<ProcessSample> rows) {
    emit layoutAboutToBeChanged({}, VerticalSortHint);
    std::unordered_map<std::int64_t, int> places;
    places.reserve(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        places.emplace(rows[i].pid, static_cast<int>(i));
    }
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& old : before) {
        const auto place = places.find(rows_[static_cast<std::size_t>(old.row())].pid);
        after.append(place == places.end() ? QModelIndex() : index(place->second, old.column()));
    }
    rows_ = std::move(rows);
    changePersistentIndexList(before, after);
    emit layoutChanged({}, VerticalSortHint);
}

void ProcessTableModel::setSelectedPID(std::optional<std::int64_t> pid) {
    if (selectedPID_ == pid) {
        return;
    }
    const auto announce = [this](std::optional<std::int64_t> changed) {
        for (std::size_t i = 0; changed && i < rows_.size(); ++i) {
            if (rows_[i].pid == *changed) {
                const int row = static_cast<int>(i);
                emit dataChanged(index(row, 0), index(row, columnTotal - 1),
                                 {isSelectedRole, Qt::AccessibleTextRole});
            }
        }
    };
    const auto previous = std::exchange(selectedPID_, pid);
    announce(previous);
    announce(pid);
}

int ProcessTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int ProcessTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columnTotal;
}

QVariant ProcessTableModel::displayText(const ProcessSample& row, int column) const {
    switch (column) {
        case processColumn:
            return text(row.displayName());
        case cpuColumn:
            return dashboard_text::percentWithDecimal(row.cpu);
        case memoryColumn:
            return dashboard_text::megabytes(row.rssMB, memoryDecimals_);
        case memoryPercentColumn:
            return dashboard_text::percentWithDecimal(row.memoryPercent);
        case actionColumn:
            return u"Review"_s;
        default:
            return {};
    }
}

void ProcessTableModel::setProtectedAppNames(const ProtectedAppNames& names) {
    if (names == protectedAppNames_) {
        return;
    }
    protectedAppNames_ = names;
    showDetails();
}

void ProcessTableModel::showDetails() {
    if (!rows_.empty()) {
        emit dataChanged(index(0, processColumn), index(rowCount() - 1, processColumn));
    }
}

const ProcessDetail* ProcessTableModel::detailOf(const ProcessSample& row) const {
    return detailOf_ ? detailOf_(row) : nullptr;
}

bool ProcessTableModel::isProtectedRow(const ProcessSample& row) const {
    return !isSafeTarget(row, protectedAppNames_, policy_);
}

QVariant ProcessTableModel::spokenText(const ProcessSample& row, int column) const {
    if (column == actionColumn) {
        return QString(u"Review "_s + text(row.displayName()));
    }
    if (column == memoryPercentColumn) {
        return displayText(row, column).toString() + u" of memory"_s;
    }
    if (column != processColumn) {
        return QString(title(static_cast<ProcessColumn>(column)) + u' ' +
                       displayText(row, column).toString());
    }
    // The rows show this only by a mark and by a colour.
    QStringList words{text(row.displayName())};
    words.append(process_words::spoken(row, detailOf(row)));
    if (isProtectedRow(row)) {
        words.append(u"Protected"_s);
    }
    if (selectedPID_ == row.pid) {
        words.append(u"Under review"_s);
    }
    return words.join(u", "_s);
}

QVariant ProcessTableModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const ProcessSample& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
        case Qt::DisplayRole:
            return displayText(row, index.column());
        case Qt::ToolTipRole:
            return index.column() == processColumn
                       ? QVariant(
                             toolTipText(process_words::toolTip(row, detailOf(row)), mostTipLines))
                       : QVariant();
        case Qt::AccessibleTextRole:
            return spokenText(row, index.column());
        case Qt::AccessibleDescriptionRole:
            // Only the pointer reaches the tool tip.
            return index.column() == processColumn
                       ? QVariant(process_words::commandLine(row, detailOf(row)))
                       : QVariant();
        case Qt::TextAlignmentRole:
            return index.column() == processColumn || index.column() == actionColumn
                       ? QVariant(Qt::AlignLeft | Qt::AlignVCenter)
                       : QVariant(Qt::AlignRight | Qt::AlignVCenter);
        case isProtectedRole:
            return isProtectedRow(row);
        case isSelectedRole:
            return selectedPID_ == row.pid;
        case noteRole:
            return process_words::note(row, detailOf(row));
        default:
            return {};
    }
}

QVariant ProcessTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnTotal) {
        return {};
    }
    if (role == Qt::TextAlignmentRole) {
        return section == processColumn || section == actionColumn
                   ? QVariant(Qt::AlignLeft | Qt::AlignVCenter)
                   : QVariant(Qt::AlignRight | Qt::AlignVCenter);
    }
    if (role != Qt::DisplayRole) {
        return {};
    }
    return section == actionColumn ? u"Action"_s : title(static_cast<ProcessColumn>(section));
}

}  // namespace tallowcrest
