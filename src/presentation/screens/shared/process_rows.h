#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QObject>

#include "core/date.h"
#include "core/local_records.h"

namespace tallowcrest {

class Clock;
class ProcessTableModel;
class ProcessTableView;

/// Gives a process table its rows, so that a click or a key hits the process that the owner means:
/// right after the owner used the pointer or a key on the rows, they keep their places. When
/// another row has come below a resting pointer, presses are ignored for a moment. Main thread.
class ProcessRows final : public QObject {
    Q_OBJECT

public:
    /// `table` shows `model`. All must outlive the object.
    ProcessRows(ProcessTableView& table, ProcessTableModel& model, const Clock& clock,
                QObject* parent = nullptr);

    /// Rows of `isSameList` may keep the places that they have, the new ones last, until the
    /// pointer leaves the table, the table is hidden or the next call. Those of another list move
    /// at once.
    void show(std::vector<ProcessSample> rows, bool isSameList);

    /// The rows that are at least partly visible. Valid until the next change of the rows.
    std::vector<const ProcessSample*> inView() const;

signals:
    /// Other rows may be in view, without a call of `show`.
    void viewChanged();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void setRows(std::vector<ProcessSample> rows);
    /// Lets the rows move that were held in their places.
    void release();
    /// Whether the owner is about to click a row or to press a key on it.
    bool isTouched() const;
    /// Absent when there is no row or no pointer.
    std::optional<std::int64_t> pidBelowPointer() const;
    /// False also when the clock was set back.
    bool isWithin(const std::optional<Date>& start, double seconds) const;

    ProcessTableView& table_;
    ProcessTableModel& model_;
    const Clock& clock_;
    std::optional<Date> touchedAt_;
    std::optional<std::vector<ProcessSample>> held_;  ///< the rows as they stand after the release
    std::optional<Date> replacedAt_;                  ///< when another row came below the pointer
    bool isPressIgnored_ = false;                     ///< of the mouse button that is down
};

}  // namespace tallowcrest
