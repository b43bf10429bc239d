#pragma once

#include <gio/gio.h>

#include <memory>

namespace tallowcrest {

/// Releases what a C library gave.
template <auto release>
struct Releaser {
    template <class Handle>
    void operator()(Handle* handle) const {
        release(handle);
    }
};

template <class Type>
using GObjectHandle = std::unique_ptr<Type, Releaser<g_object_unref>>;

}  // namespace tallowcrest
