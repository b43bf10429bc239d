#pragma once

namespace tallowcrest {

/// Releases what a C library gave: the deleter of a `std::unique_ptr`.
template <auto release>
struct Releaser {
    template <class Handle>
    void operator()(Handle* handle) const {
        release(handle);
    }
};

}  // namespace tallowcrest
