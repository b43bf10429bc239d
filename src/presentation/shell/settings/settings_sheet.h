#pragma once

#include <string>
#include <vector>

#include "presentation/widgets/window_dialog.h"

class QStackedWidget;

namespace tallowcrest {

class ElidedLabel;
class SettingsTab;
class SystemMonitor;
class TabStrip;

/// Where configuration lives. It hangs on the whole window and is there while the navigation says
/// so; however it goes away, it tells the navigation. Main thread.
class SettingsSheet final : public WindowDialog {
    Q_OBJECT

public:
    SettingsSheet(SystemMonitor& monitor, QWidget* parent);

    /// Opens or closes the sheet as the navigation asks for, and keeps an open one up to date.
    void refresh() override;

    void done(int result) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Tab {
        std::string words;
        SettingsTab* content;
    };

    void addTab(const char* words, const char* identifier, const char* description,
                SettingsTab* content);
    void present();
    void showTab();

    SystemMonitor& monitor_;
    std::vector<Tab> tabs_;
    TabStrip* strip_ = nullptr;
    QStackedWidget* pages_ = nullptr;
    ElidedLabel* lastAction_ = nullptr;
};

}  // namespace tallowcrest
