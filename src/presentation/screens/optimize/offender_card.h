#pragma once

#include <optional>
#include <string>

#include "core/local_records.h"
#include "presentation/screens/shared/process_table_model.h"
#include "presentation/widgets/card.h"

class QPushButton;

namespace tallowcrest {

class DangerButton;
class ProcessTableView;
class SummaryCard;

namespace optimize_lines {
struct Offender;
struct Target;
}  // namespace optimize_lines

/// The process under review, its group and the processes of that group, with buttons that ask
/// whether to quit them. Main thread.
class OffenderCard final : public Card {
    Q_OBJECT

public:
    explicit OffenderCard(ProtectionPolicy policy, QWidget* parent = nullptr);

    /// Without a target, only the heading, the explanation and the disabled buttons are shown. The
    /// processes of groups named in `protectedAppNames` are shown as protected.
    void show(optimize_lines::Offender offender, const ProtectedAppNames& protectedAppNames);

signals:
    /// The owner asked to review this process of the group.
    void reviewWanted(const ProcessSample& process);
    /// The owner asked to put the group on the Never Quit list, or to take it off.
    void neverQuitToggled(const std::string& group);
    /// The owner asked to quit the process under review, or its group.
    void quitProcessWanted();
    void quitAppWanted();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QWidget* makeQuitButtons();
    QWidget* makeCards();
    QPushButton* makeNeverQuit();
    QWidget* makeHelpers();
    void showTarget(optimize_lines::Target target);
    void showNeverQuit(bool isOn);
    void showHelpers(std::vector<ProcessSample> helpers, std::optional<std::int64_t> selectedPID);
    void fitTable();

    ProcessTableModel model_;
    std::optional<std::string> shownGroup_;
    ElidedLabel* explanation_ = nullptr;
    DangerButton* quitProcess_ = nullptr;
    DangerButton* quitApp_ = nullptr;
    QWidget* target_ = nullptr;  ///< everything that shows only with a target
    SummaryCard* group_ = nullptr;
    SummaryCard* risk_ = nullptr;
    QPushButton* neverQuit_ = nullptr;
    ElidedLabel* noHelpers_ = nullptr;
    ProcessTableView* table_ = nullptr;
};

}  // namespace tallowcrest
