#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "platform/base/unique_fd.h"
#include "platform/tools/spawn_support.h"

namespace tallowcrest {

/// Opens a pipe for one output stream of a tool. The read end does not block. Both ends avoid the
/// three standard descriptors, which the set-up of the child overwrites. Returns 0 or the error
/// number. Any thread.
int openCapturePipe(spawn_support::Pipe& pipe);

/// The read end of one output stream of a tool. Reads never block. One thread.
class CapturedStream {
public:
    /// Appends to `output` until that holds `maximumBytes`, and discards the rest. A null `output`
    /// discards everything. `output` must outlive the stream.
    CapturedStream(UniqueFD readEnd, std::string* output, std::size_t maximumBytes);

    /// -1 once the stream has ended.
    int descriptor() const { return readEnd_.get(); }

    /// Makes one read call.
    void readAvailable();

    /// Reads what the pipe holds at the moment of the call and no more, as another process may
    /// still be writing to it.
    void readRemaining();

private:
    /// Returns the number of bytes read; 0 when none are available or the stream has ended.
    std::size_t read(std::size_t limit);

    UniqueFD readEnd_;
    std::string* output_;
    std::size_t maximumBytes_;
    std::array<char, 16384> buffer_{};
};

}  // namespace tallowcrest
