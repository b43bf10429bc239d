#include "platform/http/http_module.h"

#include "platform/http/curl_exchange.h"
#include "platform/http/curl_update_transport.h"

tallowcrest::HttpExchange* tallowcrest_make_http_exchange(
    tallowcrest::ProxyVariables (*proxies)()) {
    return new tallowcrest::CurlExchange({.proxies = proxies});
}

tallowcrest::UpdateTransport* tallowcrest_make_update_transport(
    tallowcrest::ProxyVariables (*proxies)()) {
    return new tallowcrest::CurlUpdateTransport({.proxies = proxies});
}
