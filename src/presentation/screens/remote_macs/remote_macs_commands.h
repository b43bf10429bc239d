#pragma once

#include "presentation/words/commands.h"

/// The commands that several parts of this page offer.
namespace tallowcrest::remote_macs_commands {

inline constexpr Command scan{"Scan Remote Macs", "antenna.radiowaves.left.and.right",
                              "Samples the machines of the tailnet that are online"};
inline constexpr Command openTailscale{"Open Tailscale", "macwindow",
                                       "Opens the application of the tailnet's client"};

}  // namespace tallowcrest::remote_macs_commands
