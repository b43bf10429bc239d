#include "presentation/screens/optimize/helper_processes.h"

#include <utility>

#include "presentation/screens/optimize/selected_offender.h"
#include "sampling/app_impact.h"

namespace tallowcrest {

std::vector<ProcessSample> helperProcesses(const LatestSample& sample, std::string_view group) {
    const std::vector<ProcessSample>& processes = sample.latestProcesses();
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

QVariant HelperProcessesModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const bool isShown = role == Qt::DisplayRole || role == Qt::AccessibleTextRole;
    if (isShown && index.column() == ProcessTableModel::memoryColumn) {
        return selected_offender::wholeMegabytes(
            rows().at(static_cast<std::size_t>(index.row())).rssMB);
    }
    return QIdentityProxyModel::data(index, role);
}

}  // namespace tallowcrest
