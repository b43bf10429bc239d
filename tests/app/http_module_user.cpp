// A program beside the module for exchanges, which has to lie in the folder of those that load it.
//
//     http_module_user URL
//
// Prints whether the library for HTTP is in memory before and after the module is loaded, and the
// status of the reply.

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
    std::cout << hasLibrary();
    const LoadedExchange loaded = loadHttpExchange();
    if (loaded.http == nullptr || argc != 2) {
        std::cout << loaded.problem << '\n';
        return 1;
    }
    const SecretText token("sk-test");
    const std::string url = argv[1];
    const std::string body = "{}";
    const auto reply = loaded.http->post(
        {url, token, body, std::chrono::seconds(30), std::chrono::seconds(60)}, {});
    std::cout << ' ' << hasLibrary() << ' ' << (reply ? reply->status : -1) << '\n';
    return 0;
}
