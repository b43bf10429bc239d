#pragma once

#include <optional>
#include <string>

#include "presentation/widgets/card.h"

class QPushButton;

namespace tallowcrest {

class CardGrid;
class HelperProcessesModel;
class ProcessTableView;
class SummaryCard;
class SystemMonitor;

/// The process under review, its group and what may be done about them. Main thread.
class OffenderCard final : public Card {
    Q_OBJECT

public:
    explicit OffenderCard(SystemMonitor& monitor, QWidget* parent = nullptr);

    void refresh();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QWidget* makeCards();
    QPushButton* makeNeverQuit();
    QWidget* makeHelpers();
    void showTarget();
    void showNeverQuit();
    void showHelpers();
    void fitTable();

    SystemMonitor& monitor_;
    std::optional<std::string> shownGroup_;
    ElidedLabel* explanation_ = nullptr;
    QWidget* target_ = nullptr;  ///< all that is there with a target alone
    SummaryCard* group_ = nullptr;
    SummaryCard* risk_ = nullptr;
    QPushButton* neverQuit_ = nullptr;
    ElidedLabel* noHelpers_ = nullptr;
    HelperProcessesModel* model_ = nullptr;
    ProcessTableView* table_ = nullptr;
};

}  // namespace tallowcrest
