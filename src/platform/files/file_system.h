#pragma once

#include <sys/stat.h>

#include <array>
#include <cstdint>
#include <ctime>
#include <memory>
#include <optional>
#include <string>

#include "disk/file_identity.h"

/// What walks and copies need of the kernel, by descriptors of folders; the build selects the
/// implementation. Nothing here follows a link in the last part of a name. Any thread.
namespace tallowcrest::file_system {

enum class EntryKind { regular, folder, link, other, unknown };

struct EntryStatus {
    EntryKind kind = EntryKind::unknown;
    std::int64_t bytes = 0;
    std::optional<double> modifiedAt = {};  ///< seconds since 1970; absent where there is no date
    FileIdentity identity = {};
    bool isExecutable = false;  ///< for anybody
    bool isMountPoint = false;
    bool isHidden = false;  ///< by other means than its name
};

/// How old a status of a network volume may be.
enum class Freshness {
    cached,   ///< as old as the kernel's cache
    current,  ///< the server is asked
};

/// The status of an entry of the open folder `folder`; of the folder itself for an empty name.
/// Absent when it cannot be read.
std::optional<EntryStatus> statusOf(int folder, const char* name,
                                    Freshness freshness = Freshness::cached);

/// The entries of a folder, in the order in which the system has them.
class FolderReader {
public:
    struct Entry {
        const char* name;  ///< valid until the next call
        EntryKind kind;    ///< unknown where the volume does not tell
    };

    FolderReader();
    ~FolderReader();
    FolderReader(const FolderReader&) = delete;
    FolderReader& operator=(const FolderReader&) = delete;

    /// Begins to read an open folder, at its first entry or at an earlier `position()` in it. The
    /// descriptor must stay open meanwhile.
    void begin(int folder, std::int64_t position);

    /// Absent at the end, and where the rest cannot be read. "." and ".." are among the entries.
    std::optional<Entry> next();

    /// Where the entry after the latest one is. Absent where reading can only go on with this
    /// object.
    std::optional<std::int64_t> position() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// The last access and the last modification.
std::array<timespec, 2> timesOf(const struct stat& info);

/// Whether parallel reading would be slower on the disk that a path leads to. False when that is
/// unknown.
bool isRotational(const std::string& path);

/// Copies up to `count` bytes at `offset` from one open file to the same place of another within
/// the kernel. Returns how many, 0 at the end of the file, or -1 with `errno` set; absent where
/// the kernel cannot do it for these files.
std::optional<std::int64_t> copyWithinKernel(int from, int to, std::int64_t offset,
                                             std::int64_t count);

/// Drops what the kernel keeps of an open file that is on disk, as far as it can, so that the disk
/// is read the next time.
void forgetCached(int file);

/// Renames within an open folder unless the new name is taken. Returns 0 or the error number;
/// absent where the volume cannot do it.
std::optional<int> renameWithoutReplacing(int folder, const char* from, const char* to);

}  // namespace tallowcrest::file_system
