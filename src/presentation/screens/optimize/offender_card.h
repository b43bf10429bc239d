#pragma once

#include <optional>
#include <string>

#include "core/local_records.h"
#include "presentation/screens/load/process_table_model.h"
#include "presentation/widgets/card.h"

class QPushButton;

namespace tallowcrest {

class CardGrid;
class ProcessTableView;
class SummaryCard;

namespace cleanup_lines {
struct Offender;
struct Target;
}  // namespace cleanup_lines

/// The process under review, its group and what may be done about them. Main thread.
class OffenderCard final : public Card {
    Q_OBJECT

public:
    explicit OffenderCard(ProtectionPolicy policy, QWidget* parent = nullptr);

    void show(const cleanup_lines::Offender& offender);

signals:
    /// "Review" on a row of the group.
    void reviewWanted(const ProcessSample& process);
    /// Puts the group on the Never Quit list, or takes it off.
    void neverQuitToggled(const std::string& group);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QWidget* makeCards();
    QPushButton* makeNeverQuit();
    QWidget* makeHelpers();
    void showTarget(const cleanup_lines::Target& target);
    void showNeverQuit(bool isOn);
    void showHelpers(const cleanup_lines::Target& target);
    void fitTable();

    ProcessTableModel model_;
    std::optional<std::string> shownGroup_;
    ElidedLabel* explanation_ = nullptr;
    QWidget* target_ = nullptr;  ///< everything that shows only with a target
    SummaryCard* group_ = nullptr;
    SummaryCard* risk_ = nullptr;
    QPushButton* neverQuit_ = nullptr;
    ElidedLabel* noHelpers_ = nullptr;
    ProcessTableView* table_ = nullptr;
};

}  // namespace tallowcrest
