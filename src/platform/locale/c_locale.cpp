#include "platform/locale/c_locale.h"

#include <algorithm>
#include <cstddef>
#include <new>

namespace tallowcrest {

CLocale openCLocale(int mask, const std::string& name) {
    const std::size_t end = std::min(name.find_first_of(".@"), name.size());
    const std::size_t variant = std::min(name.find('@'), name.size());
    // Never empty, which would be the name that the environment has.
    const std::string wanted = name.substr(0, end) + ".UTF-8" + name.substr(variant);
    return CLocale(::newlocale(mask, wanted.c_str(), nullptr));
}

CLocale neutralCLocale(int mask) {
    for (const char* name : {"C.UTF-8", "C"}) {
        if (CLocale locale{::newlocale(mask, name, nullptr)}) {
            return locale;
        }
    }
    throw std::bad_alloc();  // every system has "C"
}

}  // namespace tallowcrest
