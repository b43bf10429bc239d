#pragma once

namespace tallowcrest {

class HttpExchange;
class UpdateTransport;
struct ProxyVariables;

inline constexpr const char* moduleVersionFunction = "tallowcrest_module_version";
inline constexpr const char* httpModuleFunction = "tallowcrest_make_http_exchange";
inline constexpr const char* updateModuleFunction = "tallowcrest_make_update_transport";

}  // namespace tallowcrest

/// The version and build number of the program that the module was built with. Another module can
/// lie beside a program that runs while it is upgraded. To be asked before the functions below:
/// what they take and make has the same layout in the same build alone. Any thread.
extern "C" [[gnu::visibility("default")]] const char* tallowcrest_module_version();

/// The functions of the module beside the programs, which has copies of its own of this folder and
/// of what that needs. `proxies` is called for each exchange: the lock of the environment is the
/// program's. The caller holds that lock, because the libraries behind the module read variables
/// when they are prepared. The caller owns the result. Any thread.
extern "C" [[gnu::visibility("default")]] tallowcrest::HttpExchange* tallowcrest_make_http_exchange(
    tallowcrest::ProxyVariables (*proxies)());
extern "C"
    [[gnu::visibility("default")]] tallowcrest::UpdateTransport* tallowcrest_make_update_transport(
        tallowcrest::ProxyVariables (*proxies)());
