#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "core/secret_text.h"

namespace tallowcrest {

class SecretStore;

/// The longest key in bytes: what fits into a header line that every server takes.
inline constexpr std::size_t maximumKeyLength = 4096;

/// What is said of a text that is no key.
inline constexpr std::string_view notAKey = "That does not look like an OpenAI API key.";

/// False for an empty text, and for one with control characters or a line feed inside, not in
/// UTF-8, or too long. Pure; any thread.
bool canStandInHeader(std::string_view key);

/// The key that the owner typed, without white space at its ends. Absent for a text that does not
/// begin with "sk-", and for one that cannot stand in a header. Pure; any thread.
std::optional<SecretText> validatedOpenAIKey(std::string_view text);

/// The stored key. Absent when there is none, when it cannot be read, or when it could not stand in
/// a header: another program may have stored it. Blocks as `SecretStore::read` does.
std::optional<SecretText> readOpenAIKey(SecretStore& secrets);

/// A key that was read, which counts until the stored one is removed or replaced. Any thread.
class ReadKey {
public:
    /// Advances with each change of the stored key.
    using Generation = std::atomic<std::uint64_t>;

    /// `generation` is the value that `present` had before the key was read.
    ReadKey(SecretText text, std::uint64_t generation, std::shared_ptr<const Generation> present)
        : text_(std::move(text)), generation_(generation), present_(std::move(present)) {}

    /// Null when the stored key has been removed or replaced since the reading.
    const SecretText* ifStillStored() const { return *present_ == generation_ ? &text_ : nullptr; }

private:
    SecretText text_;
    std::uint64_t generation_;
    std::shared_ptr<const Generation> present_;
};

/// A copy of `text` with "•••" in place of the key, also where JSON has escaped any of its
/// characters with backslashes or as a code, once or more often: a server can repeat what it was
/// sent. A key of less than eight bytes is no secret, and stays. `key` is valid UTF-8. Pure; any
/// thread.
std::string strikingOutKey(std::string_view text, std::string_view key);

}  // namespace tallowcrest
