#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tallowcrest {

/// What a process runs, as valid UTF-8.
struct ProcfsCommand {
    std::string text;
    /// False when the answer is a makeshift because this process had no descriptor left: ask again.
    bool isFinal = true;
};

/// The path of the executable, also when that was deleted meanwhile; else the first argument; else
/// the process's name in brackets, which is all that a kernel thread has.
ProcfsCommand resolveProcfsCommand(int procDirectory, std::int32_t pid, std::string_view name,
                                   bool isKernelThread);

/// Writes "<pid>/<file>" with its closing zero; `path` has room for 32 characters.
void writeProcfsPath(char* path, std::int32_t pid, std::string_view file);

}  // namespace tallowcrest
