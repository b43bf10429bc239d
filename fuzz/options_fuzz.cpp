#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "app/options.h"
#include "core/text.h"

#include "fuzz/require.h"

namespace {

/// Arguments cannot contain a zero byte, so it separates them.
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

void checkMessage(const std::string& message) {
    require(!message.empty() && message.size() < 1000);
    require(tallowcrest::isValidUTF8(message));
    for (const char c : message) {
        require(static_cast<unsigned char>(c) >= 0x20 && c != 0x7F);
    }
}

void checkOptions(const tallowcrest::Options& options) {
    require(!options.samples || *options.samples >= 1);
    require(!options.interval ||
            (options.interval->count() >= 10 && options.interval->count() <= 86'400'000));
    const bool onlyHeadless = options.json || options.samples || options.interval;
    require(!onlyHeadless || options.headless || options.showHelp || options.showVersion);
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
