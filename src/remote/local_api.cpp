#include "remote/local_api.h"

#include <cstddef>

namespace tallowcrest::local_api {

std::optional<std::string_view> bodyOf(std::string_view answer) {
    constexpr std::string_view headEnd = "\r\n\r\n";
    const std::size_t end = answer.find(headEnd);
    const bool isSuccess =
        answer.starts_with("HTTP/1.0 200 ") || answer.starts_with("HTTP/1.1 200 ");
    if (!isSuccess || end == std::string_view::npos) {
        return std::nullopt;
    }
    return answer.substr(end + headEnd.size());
}

}  // namespace tallowcrest::local_api
