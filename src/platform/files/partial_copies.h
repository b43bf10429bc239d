#pragma once

#include <string>
#include <string_view>

namespace tallowcrest {

/// A new name for a copy that is being made, hidden and told apart from those of other programs.
std::string partialCopyName();

/// Whether `partialCopyName` can have given this name.
bool isPartialCopyName(std::string_view name);

/// Marks the open, new file as being written, until it is closed. Has no effect on volumes without
/// locks.
void lockPartialCopy(int file);

/// Removes from an open folder what processes that were killed have left of their copies: regular
/// files of this user with such a name that nobody is writing, on this machine or, where the volume
/// shares its locks, on another one. Any thread.
void removePartialCopies(int folder);

}  // namespace tallowcrest
