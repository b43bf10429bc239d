#include <cstddef>
#include <cstdint>
#include <string_view>
#include <variant>

#include "tests/support/load_trace.h"

#include "fuzz/require.h"

/// A trace is read completely or rejected at one of its lines. What was read can be written and
/// read back.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tallowcrest;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto result = parseLoadTrace(text);
    if (const auto* error = std::get_if<TraceError>(&result)) {
        require(error->line >= 1 && error->line <= size && !error->problem.empty());
        return 0;
    }
    const auto& trace = std::get<LoadTrace>(result);
    for (std::size_t i = 1; i < trace.size(); ++i) {
        require(trace[i - 1].seconds <= trace[i].seconds);
    }
    const auto again = parseLoadTrace(formatLoadTrace(trace));
    require(std::holds_alternative<LoadTrace>(again) && std::get<LoadTrace>(again) == trace);
    return 0;
}
