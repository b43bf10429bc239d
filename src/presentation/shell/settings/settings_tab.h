#pragma once

#include <QWidget>

class QVBoxLayout;

namespace tallowcrest {

/// What one tab of the settings sheet shows, below the tab strip. Only the tab that can be seen is
/// asked to refresh, and it is asked again when it comes into view. Main thread.
class SettingsTab : public QWidget {
    Q_OBJECT

public:
    explicit SettingsTab(QWidget* parent = nullptr);

    /// Reads the monitor's state and shows it.
    virtual void refresh() = 0;

    /// The sheet comes up anew: what was typed and refused the last time is gone.
    virtual void start() {}

protected:
    /// The cards, from top to bottom; the room below them stays empty.
    void addCard(QWidget* card);

private:
    QVBoxLayout* cards_ = nullptr;
};

}  // namespace tallowcrest
