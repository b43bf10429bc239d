#pragma once

namespace tallowcrest {

/// Gives a standard descriptor that the caller's shell left closed a placeholder on which every
/// read or write fails. Otherwise the next file to be opened would get its number, and what is
/// meant for the terminal would end up in that file. Call first of all, on the main thread.
void occupyStandardDescriptors();

}  // namespace tallowcrest
