#pragma once

#include "presentation/widgets/card.h"

class QPushButton;

namespace tallowcrest {

/// What to do first, and buttons for the possible steps. Main thread.
class NextStepCard final : public Card {
    Q_OBJECT

public:
    explicit NextStepCard(QWidget* parent = nullptr);

    /// While an analysis `isBusy`, its button is disabled.
    void show(const QString& step, const QString& analysisTitle, bool isBusy);

signals:
    // The owner pressed the button of that name.
    void topProcessWanted();
    void analysisWanted();
    void cleanupWanted();
    void chatWanted();

private:
    ElidedLabel* step_ = nullptr;
    QPushButton* analysis_ = nullptr;
};

}  // namespace tallowcrest
