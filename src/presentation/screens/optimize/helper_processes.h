#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include <QIdentityProxyModel>

#include "core/local_records.h"
#include "presentation/screens/load/process_table_model.h"
#include "sampling/latest_sample.h"
#include "sampling/protection.h"

namespace tallowcrest {

/// The processes of a group, the heaviest first. Any thread.
std::vector<ProcessSample> helperProcesses(const LatestSample& sample, std::string_view group);

/// The rows of one group: the process table's own, with memory in whole megabytes. Main thread.
class HelperProcessesModel final : public QIdentityProxyModel {
    Q_OBJECT

public:
    explicit HelperProcessesModel(ProtectionPolicy policy, QObject* parent = nullptr);

    void setRows(std::vector<ProcessSample> rows);
    const std::vector<ProcessSample>& rows() const { return table_.rows(); }
    /// Which process is under review; absent for none.
    void setSelectedPID(std::optional<std::int64_t> pid) { table_.setSelectedPID(pid); }
    void setProtectedAppNames(const ProtectedAppNames& names) {
        table_.setProtectedAppNames(names);
    }

    QVariant data(const QModelIndex& index, int role) const override;

private:
    ProcessTableModel table_;
};

}  // namespace tallowcrest
