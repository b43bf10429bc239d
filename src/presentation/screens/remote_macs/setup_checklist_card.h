#pragma once

#include "presentation/widgets/card.h"

namespace tallowcrest {

/// What another machine needs before it can be sampled. Main thread.
class SetupChecklistCard final : public Card {
    Q_OBJECT

public:
    explicit SetupChecklistCard(QWidget* parent = nullptr);

signals:
    // The owner pressed the button of that name.
    void setupScriptWanted();
    void settingsWanted();
};

}  // namespace tallowcrest
