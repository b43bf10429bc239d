#pragma once

#include <locale.h>
#if __has_include(<xlocale.h>)
#include <xlocale.h>
#endif

#include <memory>
#include <string>
#include <type_traits>

namespace tallowcrest {

struct FreedLocale {
    void operator()(locale_t locale) const { ::freelocale(locale); }
};

/// A locale of the C library, for its functions that take one. Never that of the whole process.
using CLocale = std::unique_ptr<std::remove_pointer_t<locale_t>, FreedLocale>;

/// The categories of `mask` (LC_..._MASK) for `name`, such as "de_DE" or "de_DE@euro", in UTF-8,
/// whatever encoding the name has. Null when the system does not have that locale. Any thread.
CLocale openCLocale(int mask, const std::string& name);

/// The categories of `mask` for texts of no language, in UTF-8 where the system has that. Any
/// thread. Never null.
CLocale neutralCLocale(int mask);

}  // namespace tallowcrest
