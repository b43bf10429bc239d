#pragma once

#include <memory>
#include <string>
#include <utility>

#include "core/routes.h"

namespace tallowcrest {

class MainQueue;
class Observable;

/// What `settingsTab` may be: the words on the tabs of the settings sheet.
namespace settings_tabs {
inline constexpr const char* ai = "AI";
inline constexpr const char* remote = "Remote";
inline constexpr const char* localMac = "Local Mac";
inline constexpr const char* automation = "Automation";
inline constexpr const char* safety = "Safety";
}  // namespace settings_tabs

/// Where the owner is in the window: state of the shell that outlives a closed window.
/// Main thread.
class Navigation {
public:
    Navigation(MainQueue& mainQueue, bool showSetupWizard);
    ~Navigation();

    Observable& observable() { return *observable_; }

    AppRoute selectedRoute() const { return selectedRoute_; }
    void setSelectedRoute(AppRoute route) { set(selectedRoute_, route); }

    /// The text in the filter field of the process list, as typed.
    const std::string& processFilter() const { return processFilter_; }
    void setProcessFilter(std::string text) { set(processFilter_, std::move(text)); }

    bool showSetupWizard() const { return showSetupWizard_; }

    /// Whether the settings sheet is wanted on the window. It shows once the window does.
    bool showSettings() const { return showSettings_; }
    void setShowSettings(bool shows) { set(showSettings_, shows); }

    /// The words on the tab of the settings sheet. Words that are on none stand for its first tab.
    const std::string& settingsTab() const { return settingsTab_; }
    void setSettingsTab(std::string tab) { set(settingsTab_, std::move(tab)); }

private:
    template <class Field, class Value>
    void set(Field& field, Value&& value) {
        if (field != value) {
            field = std::forward<Value>(value);
            tellObservers();
        }
    }

    void tellObservers();

    std::unique_ptr<Observable> observable_;
    AppRoute selectedRoute_ = AppRoute::overview;
    std::string processFilter_;
    bool showSetupWizard_;
    bool showSettings_ = false;
    std::string settingsTab_ = settings_tabs::ai;
};

}  // namespace tallowcrest
