#pragma once

#include <QWidget>

class QVBoxLayout;

namespace tallowcrest {

/// What one tab of the settings sheet shows below the tab strip: cards that scroll. Main thread.
class SettingsTab : public QWidget {
    Q_OBJECT

public:
    explicit SettingsTab(QWidget* parent = nullptr);

protected:
    /// The cards, from top to bottom; the space below them stays empty.
    void addCard(QWidget* card);

private:
    QVBoxLayout* cards_ = nullptr;
};

}  // namespace tallowcrest
