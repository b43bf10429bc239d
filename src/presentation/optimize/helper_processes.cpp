#include "presentation/optimize/helper_processes.h"

#include <utility>

#include <QStringList>

#include "presentation/dashboard_text.h"
#include "presentation/optimize/selected_offender.h"
#include "sampling/app_impact.h"

namespace tallowcrest {

std::vector<ProcessSample> helperProcesses(const LatestSample& sample, std::string_view group) {
    const auto& processes = sample.latestProcesses();
    std::vector<ProcessSample> members;
    for (const std::size_t index : sample.impactOrder()) {
        if (appGroupName(processes[index]) == group) {
            members.push_back(processes[index]);
        }
    }
    return members;
}

HelperProcessesModel::HelperProcessesModel(ProtectionPolicy policy, QObject* parent)
    : QIdentityProxyModel(parent), table_(policy) {
    setSourceModel(&table_);
}

void HelperProcessesModel::setRows(std::vector<ProcessSample> rows) {
    if (rows != table_.rows()) {
        table_.setRows(std::move(rows));
    }
}

void HelperProcessesModel::setNeverQuit(bool neverQuit) {
    if (neverQuit == neverQuit_) {
        return;
    }
    neverQuit_ = neverQuit;
    if (rowCount() > 0) {
        constexpr int column = ProcessTableModel::processColumn;
        emit dataChanged(index(0, column), index(rowCount() - 1, column),
                         {ProcessTableModel::isProtectedRole, Qt::AccessibleTextRole});
    }
}

QVariant HelperProcessesModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const bool isShown = role == Qt::DisplayRole || role == Qt::AccessibleTextRole;
    if (isShown && index.column() == ProcessTableModel::memoryColumn) {
        return selected_offender::wholeMegabytes(
            rows().at(static_cast<std::size_t>(index.row())).rssMB);
    }
    if (role == Qt::AccessibleTextRole && index.column() == ProcessTableModel::processColumn) {
        return spokenName(index);
    }
    if (role == ProcessTableModel::isProtectedRole && neverQuit_) {
        return true;
    }
    return QIdentityProxyModel::data(index, role);
}

QString HelperProcessesModel::spokenName(const QModelIndex& index) const {
    QStringList words{
        dashboard_text::text(rows().at(static_cast<std::size_t>(index.row())).displayName())};
    if (data(index, ProcessTableModel::isProtectedRole).toBool()) {
        words.append(QStringLiteral("Protected"));
    }
    if (data(index, ProcessTableModel::isSelectedRole).toBool()) {
        words.append(QStringLiteral("Under review"));
    }
    return words.join(QStringLiteral(", "));
}

}  // namespace tallowcrest
