#pragma once

#include <string>

namespace tallowcrest {

/// What distinguishes this machine from others that share a home directory: any bytes. On Linux its
/// name, which its administrator can change. Empty when unknown. Any thread.
std::string thisMachine();

}  // namespace tallowcrest
