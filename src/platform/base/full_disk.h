#pragma once

#include <cerrno>

namespace tallowcrest {

/// Whether an operation has failed because a disk, or the owner's share of it, has no room left.
constexpr bool isDiskFull(int error) {
    return error == ENOSPC || error == EDQUOT;
}

}  // namespace tallowcrest
