#pragma once

namespace tallowcrest {

/// Opens a placeholder for each standard descriptor that the parent process left closed; every read
/// or write on it fails. Otherwise the next file to be opened would get that number, and output
/// meant for the terminal would end up in the file. Call before anything else, on the main thread.
void occupyStandardDescriptors();

/// Raises this process's limit of open files to the highest it may set itself. Child processes that
/// are started later inherit the limit. When the system refuses, the limit stays. Any thread.
void raiseDescriptorLimit();

}  // namespace tallowcrest
