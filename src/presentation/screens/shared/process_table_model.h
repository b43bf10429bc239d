#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include <QAbstractTableModel>

#include "core/local_records.h"
#include "presentation/words/process_order.h"
#include "sampling/process_details.h"
#include "sampling/protection.h"

namespace tallowcrest {

/// The visible process rows. A new sample moves, adds and removes rows in place, so that the
/// current row and the scroll position stay with their process. Main thread.
class ProcessTableModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column {
        processColumn = static_cast<int>(ProcessColumn::process),
        cpuColumn = static_cast<int>(ProcessColumn::cpu),
        memoryColumn = static_cast<int>(ProcessColumn::memory),
        memoryPercentColumn = static_cast<int>(ProcessColumn::memoryPercent),
        actionColumn
    };
    static constexpr int columnTotal = actionColumn + 1;

    enum Role {
        isProtectedRole = Qt::UserRole,  ///< bool
        isSelectedRole,                  ///< bool: under review
        noteRole,                        ///< QString: what tells the process from its namesakes
    };

    explicit ProcessTableModel(ProtectionPolicy policy, QObject* parent = nullptr);

    /// Replaces the rows. Rows with the same PID count as the same process; of several in `rows`,
    /// only the first is kept.
    void setRows(std::vector<ProcessSample> rows);
    const std::vector<ProcessSample>& rows() const { return rows_; }

    /// The owner's Never Quit list, which protects the processes of its groups as well.
    void setProtectedAppNames(const ProtectedAppNames& names);

    /// Decimals of the memory column, 1 unless set. Must be set before the first rows.
    void setMemoryDecimals(int decimals) { memoryDecimals_ = decimals; }

    /// Where the notes and tool tips find the details of processes; without it they have none. Call
    /// `showDetails` when it has changed.
    void setDetails(DetailOf source) { detailOf_ = std::move(source); }
    void showDetails();

    /// The process under review; absent for none.
    void setSelectedPID(std::optional<std::int64_t> pid);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    void removeMissing(const std::vector<ProcessSample>& rows);
    void appendNew(const std::vector<ProcessSample>& rows);
    void reorder(std::vector<ProcessSample> rows);
    /// For rows in the same order.
    void replaceFigures(std::vector<ProcessSample> rows);
    QVariant displayText(const ProcessSample& row, int column) const;
    QVariant spokenText(const ProcessSample& row, int column) const;

    bool isProtectedRow(const ProcessSample& row) const;
    const ProcessDetail* detailOf(const ProcessSample& row) const;

    ProtectionPolicy policy_;
    ProtectedAppNames protectedAppNames_;
    DetailOf detailOf_;
    int memoryDecimals_ = 1;
    std::vector<ProcessSample> rows_;
    std::optional<std::int64_t> selectedPID_;
};

}  // namespace tallowcrest
