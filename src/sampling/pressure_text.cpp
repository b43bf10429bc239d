#include "sampling/pressure_text.h"

#include "core/white_space.h"

namespace tallowcrest {

std::string pressureText(std::string_view sourceText) {
    const std::string_view trimmed = trimmingWhiteSpace(sourceText);
    return std::string(trimmed.empty() ? "Memory pressure unavailable" : trimmed);
}

}  // namespace tallowcrest
