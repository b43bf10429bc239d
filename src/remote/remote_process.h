#pragma once

#include <string>

#include "core/remote_records.h"
#include "sampling/protection.h"

namespace tallowcrest {

/// The application group that a process of another machine belongs to. Any thread.
std::string remoteAppGroupName(const RemoteProcess& process);

/// Whether a process of another machine, a Mac or a Linux machine, must not be asked to quit: a
/// part of its system, or of a group on the owner's Never Quit list. Any thread.
bool isProtectedRemoteProcess(const RemoteProcess& process, const ProtectedAppNames& neverQuit,
                              bool isLinux);

}  // namespace tallowcrest
