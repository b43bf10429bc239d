#pragma once

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace tallowcrest {

/// The parts of `text` between white space.
inline std::vector<std::string> wordsOf(const std::string& text) {
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

}  // namespace tallowcrest
