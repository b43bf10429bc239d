#pragma once

#include <cstddef>
#include <string>

#include <gmock/gmock.h>

#include "tests/architecture/layer_rules.h"

namespace tallowcrest::architecture {

/// Matches a violation at that place whose text contains `words`.
inline auto violation(const std::string& path, std::size_t line, const std::string& words) {
    return testing::AllOf(testing::Field(&Violation::path, path),
                          testing::Field(&Violation::line, line),
                          testing::Field(&Violation::what, testing::HasSubstr(words)));
}

}  // namespace tallowcrest::architecture
