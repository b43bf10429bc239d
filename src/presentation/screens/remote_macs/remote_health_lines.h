#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <QString>

#include "core/date.h"
#include "core/remote_records.h"
#include "remote/remote_actions.h"
#include "sampling/protection.h"

/// The texts of the block of one remote machine. Texts of the other machine are made safe to show.
/// Main thread.
namespace tallowcrest {

/// The state of one machine, as of the last scan.
struct RemoteHealthFacts {
    RemoteHealth machine;
    RemoteProfile profile;
    ProtectedAppNames neverQuit;
    Date now;
    bool isNowOffline = false;                          ///< its peer has gone offline since
    std::optional<RemoteActionResult> lastResult = {};  ///< of what was last done for it
    bool isSelected = false;                            ///< it is the machine under inspection
    bool showsDetails = false;  ///< its details are wanted even if it needs no attention
};

/// The buttons of the tool row.
enum class RemoteOperation : std::uint8_t {
    copyPing,
    copyPortTest,
    copyTest,
    copyHostKeyFix,
    copyKeyInstall,
    inspect,
    remotePurge,
    remoteSafe,
};

namespace remote_health_lines {

/// Whether the processors are saturated. False without a figure.
bool isCPUHigh(const RemoteHealth& machine);
/// Whether its memory is at or above the threshold of its profile. False without a figure.
bool isMemoryHigh(const RemoteHealth& machine, const RemoteProfile& profile);

/// The name of a line icon.
QString statusIcon(RemoteHealth::Status status);

/// What stands beside the age of a record whose peer has gone offline since.
QString nowOffline();

/// The nickname, or else the host name; the address of a machine without either.
QString displayName(const RemoteHealth& machine, const RemoteProfile& profile);

/// What is always visible of a machine.
struct Head {
    QString name;
    QString host;  ///< empty where it is the name
    QString status;
    QString statusIcon;
    bool isReachable = false;
    QString cpu;         ///< "CPU 12%", "CPU –"
    QString cpuWord;     ///< "High"; empty below what is saturated
    QString memory;      ///< "Memory 91%", "Memory –"
    QString memoryWord;  ///< "High"; empty below the threshold
    QString age;
    QString offline;        ///< "now offline"; empty unless its peer has gone offline since
    QString spokenName;     ///< the machine and its status
    QString spokenFigures;  ///< the rest

    /// Whether it is not reachable, or its memory is high.
    bool needsAttention() const {
        return !isReachable || !cpuWord.isEmpty() || !memoryWord.isEmpty();
    }
    bool operator==(const Head&) const = default;
};
Head head(const RemoteHealthFacts& facts);

/// "Profile: Studio · Render box · Warn at 85%"
QString profileLine(const RemoteProfile& profile);
/// "macOS 14.5", "Linux Ubuntu 24.04", "macOS unknown"; "Debian GNU/Linux 12 (bookworm)", because a
/// name with "Linux" in it needs no second one
QString systemLine(const RemoteHealth& machine);
/// "Top CPU: 92.1% /usr/bin/yes", "Top CPU: unknown"
QString topCPULine(const RemoteHealth& machine);
QString topMemoryLine(const RemoteHealth& machine);
QString recommendationLine(const RemoteHealth& machine);
QString setupHintLine(const RemoteHealth& machine);
/// "Last action: Purged remote file caches on studio-mac. · 2 min ago"; empty when there was none
QString resultLine(const RemoteHealthFacts& facts);

/// A process or an app group of the machine.
struct Row {
    std::string key;     ///< what it is; not unique in the rows of a hostile machine
    QString identifier;  ///< tells its controls from those of other rows
    QString name;
    QString note;
    QString cpu;         ///< "12.3% CPU"
    QString memory;      ///< of a process: "512 MB"
    QString toolTip;     ///< plain text
    QString copyName;    ///< the accessible name of the button "Copy"
    QString actionName;  ///< the accessible name of the other button
    QString actionDescription;
    bool isProtected = false;  ///< a process that is never quit, or a group of the list
    bool hasAction = true;     ///< whether the other button can be pressed

    bool operator==(const Row&) const = default;
};
/// One row for each process of the sample, in its order.
std::vector<Row> processRows(const RemoteHealthFacts& facts);
/// One row for each group, in their order. Protected are those on the Never Quit list.
std::vector<Row> appRows(const RemoteHealthFacts& facts);
/// What stands in the place of rows where there are none: empty for a machine that was not reached.
QString noRows(const RemoteHealth& machine);

struct Tool {
    RemoteOperation operation;
    const char* title;
    const char* identifier;
    const char* description;
};
/// All of the tool row, in its order.
std::span<const Tool> tools();
/// The one or two that help most with a machine in this state; the others are in a menu.
std::vector<RemoteOperation> foremostTools(RemoteHealth::Status status);
/// Whether the operation can be asked for; it may still be refused.
bool isEnabled(RemoteOperation operation, const RemoteHealth& machine);
/// What the tool does, or why it is disabled for the machine.
QString toolDescription(const Tool& tool, const RemoteHealth& machine);

}  // namespace remote_health_lines

}  // namespace tallowcrest
