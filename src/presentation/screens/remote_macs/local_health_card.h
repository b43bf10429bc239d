#pragma once

#include <vector>

#include <QStringList>

#include "presentation/widgets/card.h"

class QPushButton;

namespace tallowcrest {

/// What is wrong with the tailnet's client of this machine: a few lines, and all of them when the
/// owner asks for them. Main thread.
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
    void showLines();

    QStringList issues_;
    std::vector<ElidedLabel*> lines_;
    QPushButton* all_ = nullptr;
    bool showsAll_ = false;
};

}  // namespace tallowcrest
