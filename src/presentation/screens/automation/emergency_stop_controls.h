#pragma once

#include <QWidget>

class QPushButton;

namespace tallowcrest {

/// The emergency stop and, while it is engaged, the way back. The one never waits for an answer,
/// and the other never takes its place: whoever presses twice in haste does not resume. Stands on
/// a card. Main thread.
class EmergencyStopControls final : public QWidget {
    Q_OBJECT

public:
    /// `identifier` is what the buttons' own begin with: "IDENTIFIER.emergency-stop".
    explicit EmergencyStopControls(const QString& identifier, QWidget* parent = nullptr);

    void setEngaged(bool isEngaged);

signals:
    void stopWanted();
    void resumeWanted();

private:
    QPushButton* stop_ = nullptr;
    QPushButton* resume_ = nullptr;
};

}  // namespace tallowcrest
