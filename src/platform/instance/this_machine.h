#pragma once

#include <string>

namespace tallowcrest {

/// What distinguishes this machine from others that share a home directory, and stays the same
/// while it runs: any bytes. Empty when unknown. Any thread.
std::string thisMachine();

}  // namespace tallowcrest
