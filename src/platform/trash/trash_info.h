#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/date.h"

namespace tallowcrest {

/// The content of a `.trashinfo` file. `path` is the place to restore the file to, its bytes as on
/// disk: absolute, or relative to the root of the volume. Pure; any thread.
std::string trashInfoText(std::string_view path, Date deletedAt, std::int64_t utcOffset);

/// The path in such a content, decoded. Absent when the text is not, byte for byte, one that
/// `trashInfoText` gives. Pure; any thread.
std::optional<std::string> pathInTrashInfo(std::string_view text);

/// The name of the file that describes the one stored as `name`.
std::string trashInfoName(std::string_view name);

/// The name of the stored file that one with the name `infoName` describes; empty where it
/// describes none. Pure; any thread.
std::string_view describedName(std::string_view infoName);

/// The name under which a file is stored: its own for `number` 1, else with the number at the end.
/// It is cut, between two characters where it is UTF-8, so that its `trashInfoName` has at most
/// `longest` bytes. Pure; any thread.
std::string nameInTrash(std::string_view name, std::uint64_t number, std::size_t longest);

}  // namespace tallowcrest
