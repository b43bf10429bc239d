#pragma once

#include <optional>

#include "presentation/screens/remote_macs/remote_macs_lines.h"
#include "presentation/screens/shared/summary_cards.h"
#include "presentation/widgets/card.h"

class QPushButton;

namespace tallowcrest {

class Capsule;

/// The machine under inspection at a glance. Main thread.
class RemoteDetailCard final : public Card {
    Q_OBJECT

public:
    explicit RemoteDetailCard(QWidget* parent = nullptr);

    void show(const remote_macs_lines::DetailLines& lines);

    /// Where the keyboard focus goes when the owner inspects a machine.
    QWidget* firstControl() const;

signals:
    // The owner pressed the button of that name.
    void reportWanted();
    void safeStepWanted();

private:
    Capsule* status_ = nullptr;
    ElidedLabel* empty_ = nullptr;
    QWidget* filled_ = nullptr;
    std::optional<SummaryCards> facts_;
    ElidedLabel* recommendation_ = nullptr;
    ElidedLabel* result_ = nullptr;
    QPushButton* copy_ = nullptr;
};

}  // namespace tallowcrest
