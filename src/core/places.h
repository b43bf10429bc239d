#pragma once

#include <string>

namespace tallowcrest {

/// The places on disk that texts name and that differ between the systems, in the form in which the
/// owner of this system knows them.
struct Places {
    std::string caches;  ///< "~/.cache"
};

}  // namespace tallowcrest
