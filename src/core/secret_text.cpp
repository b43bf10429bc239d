#include "core/secret_text.h"

#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <new>
#include <utility>

namespace tallowcrest {
namespace {

/// Overwrites the stack below the caller as far as functions usually reach. Registers with parts of
/// a text were saved there, even by the loader when a function was called for the first time.
[[gnu::noinline]] void wipeUnusedStack() {
    std::array<char, std::size_t{32} << 10U> unused;
    wipe(unused);
}

/// Whole pages, so that what is done to them concerns no other memory.
char* takePages(std::size_t size) {
    void* const pages =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED) {
        throw std::bad_alloc();
    }
    ::mlock(pages, size);
#ifdef MADV_DONTDUMP
    ::madvise(pages, size, MADV_DONTDUMP);
#endif
    return static_cast<char*>(pages);
}

/// How many bytes the first `count` characters have.
std::size_t bytesOfCharacters(std::string_view utf8, std::size_t count) {
    std::size_t size = 0;
    for (; size < utf8.size(); ++size) {
        const bool beginsOne = (utf8[size] & '\xC0') != '\x80';
        if (beginsOne && count-- == 0) {
            break;
        }
    }
    return size;
}

}  // namespace

void wipe(std::span<char> memory) {
    volatile char* const bytes = memory.data();
    for (std::size_t i = 0; i < memory.size(); ++i) {
        bytes[i] = '\0';
    }
}

SecretText::SecretText(std::size_t size)
    : bytes_(size == 0 ? nullptr : takePages(size)), size_(size) {}

SecretText::SecretText(std::string_view text) : SecretText(text.size()) {
    std::ranges::copy(text, bytes_);
}

SecretText::SecretText(SecretText&& other) noexcept
    : bytes_(std::exchange(other.bytes_, nullptr)), size_(std::exchange(other.size_, 0)) {}

SecretText& SecretText::operator=(SecretText&& other) noexcept {
    std::swap(bytes_, other.bytes_);
    std::swap(size_, other.size_);
    return *this;
}

SecretText::~SecretText() {
    if (size_ != 0) {
        wipe({bytes_, size_});
        ::munmap(bytes_, size_);
        wipeUnusedStack();
    }
}

std::size_t SecretText::characterCount() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(view(), [](char c) { return (c & '\xC0') != '\x80'; }));
}

SecretText SecretText::replacing(std::size_t first, std::size_t removed,
                                 std::string_view inserted) const {
    const std::string_view before = view().substr(0, bytesOfCharacters(view(), first));
    const std::string_view rest = view().substr(before.size());
    const std::string_view after = rest.substr(bytesOfCharacters(rest, removed));
    SecretText result(before.size() + inserted.size() + after.size());
    char* end = std::ranges::copy(before, result.bytes_).out;
    end = std::ranges::copy(inserted, end).out;
    std::ranges::copy(after, end);
    return result;
}

}  // namespace tallowcrest
