#pragma once

namespace tallowcrest {

class HttpExchange;

inline constexpr const char* httpModuleFunction = "tallowcrest_make_http_exchange";

}  // namespace tallowcrest

/// The one function of the module beside the programs, which has copies of its own of this folder
/// and of what that needs. The caller owns the result. Any thread.
extern "C" [[gnu::visibility("default")]] tallowcrest::HttpExchange*
tallowcrest_make_http_exchange();
