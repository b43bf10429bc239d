#pragma once

#include <memory>

#include "core/clock.h"
#include "core/date.h"
#include "disk/trash.h"

namespace tallowcrest::host {

/// The Trash of this system's desktop. `clock` must outlive it. Main thread.
std::shared_ptr<Trash> makeTrash(const Clock& clock, UTCOffset utcOffset);

}  // namespace tallowcrest::host
