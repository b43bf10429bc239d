#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace tallowcrest {

/// Overwrites `memory` with zeros. The compiler does not leave it out, even if nothing reads the
/// memory afterwards.
void wipe(std::span<char> memory);

/// A text that must not remain in memory, such as a key: its bytes are overwritten before their
/// memory is released, and moving it leaves no second copy behind. It has pages of its own, which
/// are no part of a core dump where the system can leave them out, and which are not written to the
/// swap space as far as the limit for locked memory allows. Destroying one also overwrites the
/// unused part of the thread's stack, where functions that used the text have left parts of it.
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
    std::string_view view() const { return {bytes_, size_}; }
    bool isEmpty() const { return size_ == 0; }

    /// The characters (code points) of a text in UTF-8.
    std::size_t characterCount() const;
    /// A copy of a text in UTF-8 with `inserted` in place of `removed` characters from the one at
    /// `first` on. Places beyond the end mean the end.
    SecretText replacing(std::size_t first, std::size_t removed, std::string_view inserted) const;

private:
    /// Of that many zeros.
    explicit SecretText(std::size_t size);

    char* bytes_ = nullptr;  ///< null when it is empty
    std::size_t size_ = 0;
};

/// Overwrites what it releases.
template <class Value>
struct WipingAllocator {
    using value_type = Value;

    WipingAllocator() = default;
    template <class Other>
    explicit WipingAllocator(const WipingAllocator<Other>& /*other*/) {}

    Value* allocate(std::size_t count) { return std::allocator<Value>().allocate(count); }
    void deallocate(Value* values, std::size_t count) {
        wipe({reinterpret_cast<char*>(values), count * sizeof(Value)});
        std::allocator<Value>().deallocate(values, count);
    }
    bool operator==(const WipingAllocator& /*other*/) const = default;
};

/// A text that is no secret itself, but may contain one: it is overwritten before its memory is
/// released, also when it grows. Short texts, which need no memory of their own, are not.
using WipedText = std::basic_string<char, std::char_traits<char>, WipingAllocator<char>>;

}  // namespace tallowcrest
