#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "app/options.h"
#include "core/utf8.h"

namespace {

/// Arguments hold no zero byte, which thus separates them.
std::vector<std::string> argumentsFrom(const std::uint8_t* data, std::size_t size) {
    std::vector<std::string> arguments(1);
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == 0) {
            arguments.emplace_back();
        } else {
            arguments.back().push_back(static_cast<char>(data[i]));
        }
    }
    return arguments;
}

void check(bool holds) {
    if (!holds) {
        __builtin_trap();
    }
}

void checkMessage(const std::string& message) {
    check(!message.empty() && message.size() < 1000);
    check(tallowcrest::isValidUTF8(message));
    for (const char c : message) {
        check(static_cast<unsigned char>(c) >= 0x20 && c != 0x7F);
    }
}

void checkOptions(const tallowcrest::Options& options) {
    check(!options.samples || *options.samples >= 1);
    check(!options.interval ||
          (options.interval->count() >= 10 && options.interval->count() <= 86'400'000));
    const bool onlyHeadless = options.json || options.samples || options.interval;
    check(!onlyHeadless || options.headless || options.showHelp || options.showVersion);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto parsed = tallowcrest::parseOptions(argumentsFrom(data, size));
    if (const auto* error = std::get_if<tallowcrest::OptionsError>(&parsed)) {
        checkMessage(error->message);
    } else {
        checkOptions(std::get<tallowcrest::Options>(parsed));
    }
    return 0;
}
