#pragma once

namespace tallowcrest {

/// A button's title, line icon, and description for assistive technology and the tool tip. UTF-8.
struct Command {
    const char* title;
    const char* icon;  ///< empty for none
    const char* description;

    /// The same command under another title.
    constexpr Command titled(const char* other) const { return {other, icon, description}; }
};

}  // namespace tallowcrest

/// The commands that are offered in several places.
namespace tallowcrest::commands {

inline constexpr Command purge{"Purge Caches", "memorychip",
                               "Asks whether to purge the file caches"};
inline constexpr Command activityMonitor{"Activity Monitor", "macwindow",
                                         "Opens the system's own process viewer"};
inline constexpr Command selectTopProcess{"Select Top", "scope",
                                          "Selects the heaviest process for review"};
inline constexpr Command selectTopApp{"Select Top App", "chart.bar.xaxis",
                                      "Selects the heaviest process of the heaviest app"};
inline constexpr Command copyReport{"Copy Report", "doc.on.doc",
                                    "Puts the diagnostics report on the clipboard"};
inline constexpr Command exportReport{"Export", "square.and.arrow.up",
                                      "Writes the diagnostics report to a file"};
inline constexpr Command copyPublicKey{
    "Copy Public Key", "doc.on.doc",
    "Puts this machine's public key on the clipboard, or the command that makes one"};
inline constexpr Command exportSetupScript{
    "Export Setup Script", "square.and.arrow.up",
    "Writes a script that prepares another machine for remote access"};
inline constexpr Command openSettingsSheet{"Open Settings Sheet", "gearshape",
                                           "Opens the settings sheet"};
inline constexpr Command reviewDiskCleanup{
    "Review Cleanup", "", "Looks for old cache files and asks whether to move them to Trash"};
inline constexpr Command analyzeStorage{
    "Analyze Storage", "externaldrive.badge.magnifyingglass",
    "Lists the largest files in the personal folders; changes nothing"};
inline constexpr Command installToApplications{"Install to Applications", "desktopcomputer",
                                               "Copies this program to where you install programs, "
                                               "unless it is installed for all users"};
inline constexpr Command enableLaunchAtLogin{"Enable Launch at Login", "power",
                                             "Starts this program when you log in"};
inline constexpr Command disableLaunchAtLogin{"Disable Launch at Login", "power",
                                              "No longer starts this program when you log in"};
inline constexpr Command checkForUpdates{"Check for Updates…", "",
                                         "Looks for a newer version of this program"};
inline constexpr Command setupWizard{"Setup Wizard", "checklist.checked",
                                     "Shows what makes this program useful every day"};
inline constexpr Command emergencyStop{
    "Emergency Stop", "exclamationmark.octagon",
    "Immediately disables automatic cleanup, purge, remote scans, and AI autonomous execution."};
inline constexpr Command resumeManualMode{
    "Resume Manual Mode", "", "Clears the stop; every automation stays off until you turn it on"};

}  // namespace tallowcrest::commands
