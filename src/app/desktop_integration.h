#pragma once

#include "integration/integration_ports.h"

namespace tallowcrest {

/// What installing the program and starting it at login needs on this desktop.
InstallPorts desktopInstallPorts();

/// What updates need on this desktop.
UpdatePorts desktopUpdatePorts();

}  // namespace tallowcrest
