#pragma once

#include <limits>

namespace tallowcrest {

inline constexpr double nan = std::numeric_limits<double>::quiet_NaN();
inline constexpr double infinity = std::numeric_limits<double>::infinity();

}  // namespace tallowcrest
