#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "platform/base/unique_fd.h"
#include "platform/tools/spawn_support.h"

namespace tallowcrest {

/// A pipe for one of a tool's streams: our end does not block, and both keep clear of the three
/// standard numbers, which the child's set-up overwrites. 0, or the error number. Any thread.
int openCapturePipe(spawn_support::Pipe& pipe);

/// Our end of one of a tool's streams. Reads never block. One thread.
class CapturedStream {
public:
    /// Appends to `output`, which may be null to discard, until that holds `maximumBytes`; from
    /// then on the stream is read and dropped. `output` outlives the stream.
    CapturedStream(UniqueFD readEnd, std::string* output, std::size_t maximumBytes);

    /// -1 once the stream has ended.
    int descriptor() const { return readEnd_.get(); }

    /// Reads once.
    void readAvailable();

    /// Takes what the pipe holds at the moment of the call, and no more than that: somebody else
    /// may still be writing into it.
    void readRemaining();

private:
    /// The number of bytes read; 0 when there are none for now or the stream has ended.
    std::size_t read(std::size_t limit);

    UniqueFD readEnd_;
    std::string* output_;
    std::size_t maximumBytes_;
    std::array<char, 16384> buffer_{};
};

}  // namespace tallowcrest
