#pragma once

#include <QWidget>

class QVBoxLayout;

namespace tallowcrest {

/// The content of one tab of the settings sheet: cards that scroll. Main thread.
class SettingsTab : public QWidget {
    Q_OBJECT

public:
    explicit SettingsTab(QWidget* parent = nullptr);

protected:
    /// Adds a card below the others and takes ownership of it.
    void addCard(QWidget* card);

private:
    QVBoxLayout* cards_ = nullptr;
};

}  // namespace tallowcrest
