#pragma once

#include <vector>

#include <QStringList>

#include "presentation/widgets/card.h"

namespace tallowcrest {

/// What is wrong with the tailnet's client of this machine. Main thread.
class LocalHealthCard final : public Card {
    Q_OBJECT

public:
    explicit LocalHealthCard(QWidget* parent = nullptr);

    void show(const QStringList& issues);

signals:
    // The owner pressed the button of that name.
    void tailscaleWanted();
    void healthTestWanted();

private:
    std::vector<ElidedLabel*> lines_;
};

}  // namespace tallowcrest
