// A program beside the module for exchanges, which has to lie in the folder of those that load it.
//
//     http_module_user [--update] URL
//
// Prints whether the library for HTTP is in memory before and after the exchange, and the reply's
// status and error. With the option the exchange is that of an update, and whether there are
// digests is printed, too.

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

namespace tallowcrest {
namespace {

int exchange(const std::string& url) {
    HttpModule http;
    std::cout << hasLibrary() << ' ';
    const SecretText token("sk-test");
    const std::string body = "{}";
    const auto reply =
        http.post({url, token, body, std::chrono::seconds(30), std::chrono::seconds(60)}, {});
    std::cout << hasLibrary() << ' ' << reply->status << ' ' << reply->transportError.value_or("")
              << '\n';
    return 0;
}

int update(const std::string& url) {
    UpdateModule updates;
    std::cout << hasLibrary() << ' ';
    const UpdateReply reply =
        updates.fetch({url, 1000, std::chrono::seconds(30)},
                      [](std::string_view, std::optional<std::uint64_t>) { return true; }, {});
    std::cout << hasLibrary() << ' ' << (updates.startSha256() != nullptr) << ' '
              << updates.isSigned("", "", "") << ' ' << reply.status << ' ' << reply.error << '\n';
    return 0;
}

}  // namespace
}  // namespace tallowcrest

int main(int argc, char** argv) {
    const bool isUpdate = argc == 3 && std::string(argv[1]) == "--update";
    const std::string url = argc > 1 ? argv[argc - 1] : "";
    return isUpdate ? tallowcrest::update(url) : tallowcrest::exchange(url);
}
