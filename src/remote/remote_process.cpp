#include "remote/remote_process.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "sampling/app_impact.h"

namespace tallowcrest {
namespace {

constexpr std::array<std::string_view, 7> systemNames{
    "kernel_task", "launchd", "WindowServer", "loginwindow", "Finder", "Dock", "SystemUIServer"};
constexpr std::array<std::string_view, 2> systemFolders{"/System/", "/usr/libexec/"};

/// The row as the rules for this machine take it.
ProcessSample asLocal(const RemoteProcess& process) {
    ProcessSample row;
    row.pid = process.pid;
    row.command = process.command;
    return row;
}

}  // namespace

std::string remoteAppGroupName(const RemoteProcess& process) {
    return normalizedAppName(process.displayName());
}

bool isProtectedRemoteProcess(const RemoteProcess& process, const ProtectedAppNames& neverQuit,
                              bool isLinux) {
    return std::ranges::find(systemNames, process.displayName()) != systemNames.end() ||
           std::ranges::any_of(systemFolders,
                               [&process](std::string_view folder) {
                                   return process.command.starts_with(folder);
                               }) ||
           neverQuit.contains(remoteAppGroupName(process)) ||
           (isLinux && isProtectedOnLinux(asLocal(process)));
}

}  // namespace tallowcrest
