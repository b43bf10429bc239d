// A program beside the module for exchanges, which has to lie in the folder of those that load it.
//
//     http_module_user URL
//
// Prints whether the library for HTTP is in memory before and after the exchange, and the reply's
// status and error.

#include <chrono>
#include <iostream>
#include <string>

#include "app/http_module.h"
#include "tests/support/file_text.h"

namespace {

bool hasLibrary() {
    return tallowcrest::fileText("/proc/self/maps").find("/libcurl") != std::string::npos;
}

}  // namespace

int main(int argc, char** argv) {
    using namespace tallowcrest;
    HttpModule http;
    std::cout << hasLibrary() << ' ';
    const SecretText token("sk-test");
    const std::string url = argc == 2 ? argv[1] : "";
    const std::string body = "{}";
    const auto reply =
        http.post({url, token, body, std::chrono::seconds(30), std::chrono::seconds(60)}, {});
    std::cout << hasLibrary() << ' ' << reply->status << ' ' << reply->transportError.value_or("")
              << '\n';
    return 0;
}
