#pragma once

#include "core/remote_records.h"

namespace tallowcrest {

class Locale;

/// Whether the tailnet knows a way to the device: a direct path, a relay, or an entry in the table
/// of paths. Any thread.
bool hasPath(const TailDevice& device);

/// Whether the device is online and its operating system is one for Macs. Any thread.
bool isRemoteMac(const TailDevice& device, const Locale& locale);

/// Whether the device is online and its operating system is a Linux. Any thread.
bool isRemoteLinux(const TailDevice& device, const Locale& locale);

}  // namespace tallowcrest
