#pragma once

#include <gio/gio.h>

#include <memory>

#include "platform/base/releaser.h"

namespace tallowcrest {

template <class Type>
using GObjectHandle = std::unique_ptr<Type, Releaser<g_object_unref>>;

}  // namespace tallowcrest
