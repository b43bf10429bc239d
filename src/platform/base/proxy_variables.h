#pragma once

#include <string>

namespace tallowcrest {

/// The proxy that the environment names for https, and the hosts that are asked without it. Empty
/// for none.
struct ProxyVariables {
    std::string proxy;
    std::string exceptions;
};

/// Reads the variables under `environmentLock`. Any thread.
ProxyVariables proxyVariables();

}  // namespace tallowcrest
