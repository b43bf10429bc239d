#pragma once

#include <cstdlib>
#include <memory>

namespace tallowcrest {

struct FreeXcbMemory {
    void operator()(void* memory) const { std::free(memory); }
};

/// What xcb hands over: replies, errors and names, which are the caller's to free.
template <typename Handed>
using XcbMemory = std::unique_ptr<Handed, FreeXcbMemory>;

}  // namespace tallowcrest
