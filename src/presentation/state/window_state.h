#pragma once

#include <memory>
#include <string>
#include <utility>

#include "core/outcome.h"
#include "core/routes.h"

namespace tallowcrest {

class ActivityLog;
class MainQueue;
class Observable;
class SettingsOwner;

/// The tabs of the settings sheet, in their order.
enum class SettingsTabKind { ai, remote, localMac, automation, safety };

/// Where the owner is in the window: state of the shell that outlives a closed window.
/// Main thread.
class Navigation {
public:
    explicit Navigation(MainQueue& mainQueue);
    ~Navigation();

    /// Notifies when a value that has a setter changes.
    Observable& observable() { return *observable_; }

    AppRoute selectedRoute() const { return selectedRoute_; }
    void setSelectedRoute(AppRoute route) { set(selectedRoute_, route); }

    /// The text in the filter field of the process list, as typed.
    const std::string& processFilter() const { return processFilter_; }
    void setProcessFilter(std::string text) { set(processFilter_, std::move(text)); }

    /// Whether the settings sheet is wanted on the window. It shows once the window does.
    bool showSettings() const { return showSettings_; }
    void setShowSettings(bool shows) { set(showSettings_, shows); }

    /// Whether the setup wizard is wanted on the window.
    bool showSetupWizard() const { return showSetupWizard_; }
    void setShowSetupWizard(bool shows) { set(showSetupWizard_, shows); }

    /// The tab that the settings sheet shows.
    SettingsTabKind settingsTab() const { return settingsTab_; }
    void setSettingsTab(SettingsTabKind tab) { set(settingsTab_, tab); }
    void openSettings(SettingsTabKind tab) {
        setSettingsTab(tab);
        setShowSettings(true);
    }

    /// The identifier of the remote machine under inspection; empty until the owner chooses one.
    /// The machine may have left the tailnet since.
    const std::string& selectedRemoteID() const { return selectedRemoteID_; }
    void setSelectedRemoteID(std::string id) { set(selectedRemoteID_, std::move(id)); }

private:
    template <class Field, class Value>
    void set(Field& field, Value&& value) {
        if (field != value) {
            field = std::forward<Value>(value);
            notifyObservers();
        }
    }

    void notifyObservers();

    std::unique_ptr<Observable> observable_;
    AppRoute selectedRoute_ = AppRoute::overview;
    std::string processFilter_;
    std::string selectedRemoteID_;
    bool showSettings_ = false;
    bool showSetupWizard_ = false;
    SettingsTabKind settingsTab_ = SettingsTabKind::ai;
};

/// Which sections of the dashboard the owner has closed. Every change is stored at once.
/// Main thread.
class DashboardSections {
public:
    /// Stored texts that name no section are ignored, and kept until all sections are expanded,
    /// because another version may know them. The references must outlive the object.
    DashboardSections(SettingsOwner& settings, ActivityLog& log) : settings_(settings), log_(log) {}

    bool isCollapsed(DashboardSection section) const;
    /// Does nothing when nothing changes.
    void setCollapsed(DashboardSection section, bool collapsed);

    /// Empties `collapsedSections` and records a message.
    Outcome expandAll();
    /// Puts every section into `collapsedSections` and records a message.
    Outcome collapseAll();

private:
    SettingsOwner& settings_;
    ActivityLog& log_;
};

/// What the window keeps of itself while pages come and go. Main thread.
struct WindowState {
    WindowState(SettingsOwner& settings, ActivityLog& log, MainQueue& mainQueue)
        : navigation(mainQueue), sections(settings, log), settings_(settings), log_(log) {}

    /// The owner is done with the setup wizard: it closes, and no later start opens it.
    Outcome completeFirstRun();

    Navigation navigation;
    DashboardSections sections;

private:
    SettingsOwner& settings_;
    ActivityLog& log_;
};

}  // namespace tallowcrest
