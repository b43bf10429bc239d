// A program for the test of what remains of a key in memory. It takes a key through the same parts
// as the window's program does: stored, read, sent, removed.
//
//     key_user KEY_FILE URL AUTHORITY_FILE
//
// Prints "held" while it has the key, "sent" and what became of the request, and "removed". After
// each of them it waits for SIGUSR1.

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <memory>
#include <string>
#include <variant>

#include "advisor/provider_exchange.h"
#include "platform/http/curl_exchange.h"
#include "platform/secrets/secret_service_store.h"

namespace tallowcrest {
namespace {

SecretText keyIn(const char* file) {
    std::array<char, 4096> bytes{};
    const int descriptor = ::open(file, O_RDONLY | O_CLOEXEC);
    const ssize_t size = ::read(descriptor, bytes.data(), bytes.size());
    ::close(descriptor);
    SecretText key({bytes.data(), static_cast<std::size_t>(size)});
    wipe(bytes);
    return key;
}

void sayAndWait(const char* line) {
    std::puts(line);
    std::fflush(stdout);
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGUSR1);
    int taken = 0;
    sigwait(&signals, &taken);
}

int run(const char* file, const std::string& url, const char* authorities) {
    SecretServiceStore store{{}};
    const CurlExchange::Options options{.certificateAuthorities = authorities};
    const auto exchange = std::make_shared<CurlExchange>(options);
    {
        const SecretText key = keyIn(file);
        if (!store.add(key)) {
            return 1;
        }
        sayAndWait("held");
    }
    {
        const auto generation = std::make_shared<ReadKey::Generation>(0);
        const auto result =
            postAnalysisRequest({.http = exchange,
                                 .endpoint = Endpoint{.url = url, .service = "Server"},
                                 .key = ReadKey(*store.read(), 0, generation),
                                 .model = {}},
                                std::string(10'000, 'r'), {});
        sayAndWait(("sent " + std::get<AIError>(*result).message).c_str());
    }
    if (!store.remove(true)) {
        return 2;
    }
    sayAndWait("removed");
    return 0;
}

}  // namespace
}  // namespace tallowcrest

int main(int argc, char** argv) {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGUSR1);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return argc == 4 ? tallowcrest::run(argv[1], argv[2], argv[3]) : 64;
}
