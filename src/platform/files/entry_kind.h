#pragma once

#include <sys/stat.h>

#include "platform/files/file_system.h"

namespace tallowcrest::file_system {

/// Of a status.
EntryKind kindOfMode(mode_t mode);

/// Of a `d_type` of a folder's entry.
EntryKind kindOfType(unsigned char type);

}  // namespace tallowcrest::file_system
