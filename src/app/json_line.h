#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace tallowcrest {

/// The object as one line of JSON, line end included. It is ASCII, so that no name in it can
/// control the terminal; bytes that are no UTF-8 are U+FFFD.
inline std::string jsonLine(const nlohmann::ordered_json& object) {
    return object.dump(-1, ' ', true, nlohmann::ordered_json::error_handler_t::replace) + '\n';
}

}  // namespace tallowcrest
