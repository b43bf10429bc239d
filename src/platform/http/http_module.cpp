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
