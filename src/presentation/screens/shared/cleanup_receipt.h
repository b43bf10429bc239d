#pragma once

#include <QWidget>

#include "core/activity_event.h"
#include "core/date.h"

class QPushButton;

namespace tallowcrest {

class ElidedLabel;
class ProgressRow;
struct DiskAutopilotState;

/// The latest receipt of a clean-up, and a button that puts back what it has moved. Hidden while
/// there is neither. For use on a card. Main thread.
class CleanupReceipt final : public QWidget {
    Q_OBJECT

public:
    /// The object names of the parts begin with `identifier`; that of the button ends in "-undo".
    explicit CleanupReceipt(const QString& identifier, QWidget* parent = nullptr);

    /// `receipt` is null without one. Its time has the date if it is of another day than `now`.
    void show(const ActivityEvent* receipt, const DiskAutopilotState& state, Date now);

signals:
    /// The owner pressed "Undo".
    void undoWanted();
    /// The owner pressed "Stop" while files are put back.
    void stopWanted();

private:
    ElidedLabel* title_ = nullptr;
    ElidedLabel* time_ = nullptr;
    ElidedLabel* detail_ = nullptr;
    ElidedLabel* words_ = nullptr;
    ProgressRow* progress_ = nullptr;
    QPushButton* undo_ = nullptr;
};

}  // namespace tallowcrest
