#pragma once

#include <QTabBar>

namespace tallowcrest {

/// The tab strip of the settings sheet. Main thread.
class SettingsTabBar final : public QTabBar {
    Q_OBJECT

public:
    explicit SettingsTabBar(QWidget* parent = nullptr);

protected:
    void focusInEvent(QFocusEvent* event) override;
    QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }
    void paintEvent(QPaintEvent* event) override;
    QSize tabSizeHint(int index) const override;

private:
    bool hasKeyboardFocus_ = false;
};

}  // namespace tallowcrest
