#pragma once

#include <string>

#include "core/date.h"
#include "presentation/screen.h"

class QLineEdit;

namespace tallowcrest {

class ElidedLabel;
class ProcessTableModel;
class ProcessTableView;
class SystemMonitor;

/// The full process list, from which a process can be taken under review. Nothing quits from here.
/// Main thread.
class ProcessesPage final : public Screen {
    Q_OBJECT

public:
    explicit ProcessesPage(SystemMonitor& monitor, QWidget* parent = nullptr);

    void refresh() override;
    void focusSearch() override;

private:
    QWidget* makeToolRow();
    void showStatus();
    void describeTable(const QString& emptyDetail);
    void review(const QModelIndex& index);

    SystemMonitor& monitor_;
    ProcessTableModel* model_ = nullptr;
    ProcessTableView* table_ = nullptr;
    ElidedLabel* status_ = nullptr;
    QLineEdit* filter_ = nullptr;
    std::string shownFilter_;
    Date shownSample_;
};

}  // namespace tallowcrest
