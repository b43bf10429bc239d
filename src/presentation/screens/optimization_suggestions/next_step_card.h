#pragma once

#include "presentation/screens/optimization_suggestions/optimization_suggestions_lines.h"
#include "presentation/widgets/card.h"

class QPushButton;

namespace tallowcrest {

/// What to do first, and buttons for the possible steps. Main thread.
class NextStepCard final : public Card {
    Q_OBJECT

public:
    explicit NextStepCard(QWidget* parent = nullptr);

    /// An analysis, and whether it is under way: its button is then disabled.
    struct Analysis {
        QString title;
        bool isBusy = false;
    };

    void show(const optimization_suggestions_lines::NextStep& step, const Analysis& analysis,
              const Analysis& storage);

signals:
    // The owner pressed the button of that name.
    void topProcessWanted();
    void analysisWanted();
    void storageAnalysisWanted();
    void cleanupWanted();
    void chatWanted();

private:
    ElidedLabel* step_ = nullptr;
    QPushButton* topProcess_ = nullptr;
    QPushButton* analysis_ = nullptr;
    QPushButton* storage_ = nullptr;
};

}  // namespace tallowcrest
