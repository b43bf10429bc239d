#include "core/secret_text.h"

#include <algorithm>
#include <utility>

namespace tallowcrest {

void wipe(std::span<char> memory) {
    volatile char* const bytes = memory.data();
    for (std::size_t i = 0; i < memory.size(); ++i) {
        bytes[i] = '\0';
    }
}

SecretText::SecretText(std::string_view text)
    : bytes_(std::make_unique<char[]>(text.size())), size_(text.size()) {
    std::ranges::copy(text, bytes_.get());
}

SecretText::SecretText(SecretText&& other) noexcept
    : bytes_(std::move(other.bytes_)), size_(std::exchange(other.size_, 0)) {}

SecretText& SecretText::operator=(SecretText&& other) noexcept {
    std::swap(bytes_, other.bytes_);
    std::swap(size_, other.size_);
    return *this;
}

SecretText::~SecretText() {
    wipe({bytes_.get(), size_});
}

}  // namespace tallowcrest
