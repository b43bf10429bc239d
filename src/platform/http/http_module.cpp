#include "platform/http/http_module.h"

#include "platform/http/curl_exchange.h"

tallowcrest::HttpExchange* tallowcrest_make_http_exchange() {
    return new tallowcrest::CurlExchange;
}
