#pragma once

#include <QWidget>

class QPushButton;

namespace tallowcrest {

class DangerButton;

/// The emergency stop and, while it is engaged, a button that resumes. The stop asks for no
/// confirmation. "Resume" appears beside it, not in its place, so that a double click does not
/// resume. For use on a card. Main thread.
class EmergencyStopControls final : public QWidget {
    Q_OBJECT

public:
    /// The object names of the buttons begin with `identifier`: "IDENTIFIER.emergency-stop".
    explicit EmergencyStopControls(const QString& identifier, QWidget* parent = nullptr);

    /// Shows "Resume Manual Mode" only while the stop is engaged.
    void setEngaged(bool isEngaged);
    /// The one that the Tab key reaches last.
    QWidget* lastControl() const;

signals:
    /// The owner pressed the emergency stop.
    void stopWanted();
    /// The owner pressed "Resume Manual Mode".
    void resumeWanted();

private:
    DangerButton* stop_ = nullptr;
    QPushButton* resume_ = nullptr;
};

}  // namespace tallowcrest
