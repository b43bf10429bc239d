#pragma once

#include "integration/update_ports.h"

namespace tallowcrest {

/// What this build knows about its updates: the values TALLOWCREST_BUILD_NUMBER and
/// TALLOWCREST_UPDATE_… of its configuration.
UpdateBuild updateBuild();

}  // namespace tallowcrest
