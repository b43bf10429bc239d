#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/date.h"
#include "presentation/card.h"

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
    /// All that the card's content follows from.
    struct Shown {
        std::optional<std::int64_t> pid;
        std::uint64_t startTime = 0;
        std::optional<std::string> group;
        std::optional<Date> sampledAt;
        bool neverQuit = false;

        bool operator==(const Shown&) const = default;
    };

    Shown present() const;
    QWidget* makeCards();
    QPushButton* makeNeverQuit();
    QWidget* makeHelpers();
    void showHeading(const QString& heading);
    void showTarget();
    void showNeverQuit();
    void showHelpers();
    void fitTable();

    SystemMonitor& monitor_;
    std::optional<Shown> shown_;
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
