#include "core/secret_text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tallowcrest {
namespace {

/// Overwrites the stack below the caller as far as functions usually reach. Registers with parts of
/// a text were saved there, even by the loader when a function was called for the first time.
[[gnu::noinline]] void wipeUnusedStack() {
    std::array<char, std::size_t{32} << 10U> unused;
    wipe(unused);
}

}  // namespace

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
    if (size_ != 0) {
        wipe({bytes_.get(), size_});
        wipeUnusedStack();
    }
}

}  // namespace tallowcrest
