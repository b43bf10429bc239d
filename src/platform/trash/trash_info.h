#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/date.h"

namespace tallowcrest {

/// The content of a `.trashinfo` file. `path` is the place to restore the file to, its bytes as on
/// disk: absolute, or relative to the root of the volume. Pure; any thread.
std::string trashInfoText(std::string_view path, Date deletedAt, std::int64_t utcOffset);

/// The name of the file that describes the one stored as `name`.
std::string trashInfoName(std::string_view name);

/// The name under which a file is stored: its own for `number` 1, else with the number at the end.
/// It is cut, between two characters where it is UTF-8, so that its `trashInfoName` has at most
/// `longest` bytes. Pure; any thread.
std::string nameInTrash(std::string_view name, std::uint64_t number, std::size_t longest);

}  // namespace tallowcrest
