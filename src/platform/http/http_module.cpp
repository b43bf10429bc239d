#include "platform/http/http_module.h"

#include "platform/http/curl_exchange.h"

tallowcrest::HttpExchange* tallowcrest_make_http_exchange(
    tallowcrest::ProxyVariables (*proxies)()) {
    return new tallowcrest::CurlExchange({.proxies = proxies});
}
