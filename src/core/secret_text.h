#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

namespace tallowcrest {

/// Overwrites `memory` with zeros. The compiler does not leave it out, even if nothing reads the
/// memory afterwards.
void wipe(std::span<char> memory);

/// A text that must not remain in memory, such as a key: its bytes are overwritten before their
/// memory is released, and moving it leaves no second copy behind. Destroying one also overwrites
/// the unused part of the thread's stack, where functions that used the text have left parts of it.
/// Any thread, not several at once.
class SecretText {
public:
    SecretText() = default;
    /// Copies `text`, which remains the caller's to wipe.
    explicit SecretText(std::string_view text);
    SecretText(SecretText&& other) noexcept;
    SecretText& operator=(SecretText&& other) noexcept;
    ~SecretText();

    /// Valid until the object is changed, moved from or destroyed.
    std::string_view view() const { return {bytes_.get(), size_}; }
    bool isEmpty() const { return size_ == 0; }

private:
    std::unique_ptr<char[]> bytes_;
    std::size_t size_ = 0;
};

}  // namespace tallowcrest
