#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/local_records.h"
#include "presentation/screens/shared/process_table_model.h"
#include "presentation/widgets/card.h"

class QPushButton;

namespace tallowcrest {

class Clock;
class DangerButton;
class ProcessRows;
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
    /// `clock` must outlive the card.
    OffenderCard(ProtectionPolicy policy, const Clock& clock, QWidget* parent = nullptr);

    /// Without a target, only the heading, the explanation and the disabled buttons are shown. The
    /// processes of groups named in `protectedAppNames` are shown as protected.
    void show(optimize_lines::Offender offender, const ProtectedAppNames& protectedAppNames);

    /// Where the rows find their details. Call `showDetails` when those have changed.
    void setDetails(DetailOf source) { model_.setDetails(std::move(source)); }
    void showDetails() { model_.showDetails(); }
    /// The processes of the group that are in view. Valid until the next change of the rows.
    std::vector<const ProcessSample*> rowsInView() const;

signals:
    /// The owner asked to review this process of the group.
    void reviewWanted(const ProcessSample& process);
    /// Other rows may be in view, without a call of `show`.
    void rowsInViewChanged();
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
    /// Hides the table while it has no rows, and makes it as high as they are.
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
    ProcessRows* rows_ = nullptr;
};

}  // namespace tallowcrest
