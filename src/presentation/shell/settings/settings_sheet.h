#pragma once

#include <functional>
#include <span>
#include <vector>

#include "actions/automation.h"
#include "presentation/shell/sheet_host.h"
#include "presentation/state/window_state.h"
#include "presentation/words/automation_lines.h"

class QStackedLayout;

namespace tallowcrest {

class AITab;
class AutomationTab;
class AutomationToggles;
class ElidedLabel;
class RemoteTab;
class SafetyTab;
class SettingsTab;
class SystemMonitor;
class TabStrip;

/// The settings. Only the sheet reads the state and calls operations; its tabs take plain values.
/// Only the visible tab is updated. Main thread.
class SettingsSheet final : public Sheet {
    Q_OBJECT

public:
    SettingsSheet(SystemMonitor& monitor, WindowState& state, QWidget* window);
    ~SettingsSheet() override;

    /// What the sheet shows of `monitor` and `state`, which also say whether it is open.
    static std::vector<Observable*> shows(SystemMonitor& monitor, WindowState& state);

protected:
    void start() override;
    void showState() override;
    QWidget* firstControl() override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Tab {
        SettingsTabKind kind;
        std::function<void()> show;
    };

    QWidget* makeHead();
    QWidget* makeFoot();
    void addTab(SettingsTabKind kind, const char* words, const char* identifier,
                const char* description, SettingsTab* content, std::function<void()> show);
    void addAI();
    void connectKey();
    void addRemote();
    void addLocalMac();
    void addAutomation();
    void addSafety();
    AutomationToggles* makeSwitches(std::span<const AutomationSwitch> switches);
    void takeUsername(const QString& typed);
    void takeModel(const QString& typed);
    void takeEndpoint(const QString& typed);
    void showAI();
    void showSafety();

    SystemMonitor& monitor_;
    WindowState& state_;
    std::vector<Tab> tabs_;
    TabStrip* strip_ = nullptr;
    QStackedLayout* pages_ = nullptr;
    AITab* ai_ = nullptr;
    RemoteTab* remote_ = nullptr;
    AutomationTab* automation_ = nullptr;
    SafetyTab* safety_ = nullptr;
    ElidedLabel* lastAction_ = nullptr;
};

}  // namespace tallowcrest
