#include "platform/http/http_module.h"

#include "platform/http/curl_exchange.h"
#include "platform/http/curl_update_transport.h"

const char* tallowcrest_module_version() {
    return TALLOWCREST_MODULE_VERSION;
}

tallowcrest::HttpExchange* tallowcrest_make_http_exchange(
    tallowcrest::ProxyVariables (*proxies)()) {
    return new tallowcrest::CurlExchange({.proxies = proxies});
}

tallowcrest::UpdateTransport* tallowcrest_make_update_transport(
    tallowcrest::ProxyVariables (*proxies)()) {
    return new tallowcrest::CurlUpdateTransport({.proxies = proxies});
}

/// libcurl's libraries bring GnuTLS for protocols that are not used here. It asks for this function
/// of its own users when it is loaded, and only prepares itself, which takes 3 MB, where it is 0.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the name is theirs
extern "C" [[gnu::visibility("default")]] int _gnutls_global_init_skip() {
    return 1;
}
