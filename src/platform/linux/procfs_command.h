#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tallowcrest {

/// The command of a process, as valid UTF-8.
struct ProcfsCommand {
    std::string text;
    /// False when no descriptor was left to read the arguments, so `text` is only the process name.
    bool isFinal = true;
};

/// The command of a process whose executable this user may not read. `firstArgument` is the path or
/// name by which the program was called, or a title that the program has set, such as
/// "sshd: user@pts/0", of which only the program's name is used. `name` is the kernel's name of the
/// process, at most 15 bytes. Pure.
std::string_view commandOfFirstArgument(std::string_view firstArgument, std::string_view name);

/// The path of the executable, even if that has been deleted; else the command by the first
/// argument; else the name of the process, the only one left while it exits. For a kernel thread
/// its name in brackets. Brackets mark what must not be quit, so no other command gets them.
ProcfsCommand resolveProcfsCommand(int procDirectory, std::int32_t pid, std::string_view name,
                                   bool isKernelThread);

/// Writes "<pid>/<file>" and a terminating NUL to `path`, which holds 32 characters.
void writeProcfsPath(char* path, std::int32_t pid, std::string_view file);

}  // namespace tallowcrest
