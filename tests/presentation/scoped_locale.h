#pragma once

#include <memory>

#include "platform/desktop/qt_locale.h"
#include "presentation/words/dashboard_text.h"

namespace tallowcrest {

/// The number and date formats of the window in a locale such as "de_DE".
inline std::shared_ptr<const Locale> windowLocale(const char* name) {
    return std::make_shared<QtLocale>(LocaleNames{name, name});
}

/// All texts use the formats of this locale during its lifetime, and `PlainLocale` afterwards.
class ScopedLocale {
public:
    explicit ScopedLocale(const char* name) { dashboard_text::setLocale(windowLocale(name)); }
    ~ScopedLocale() { dashboard_text::setLocale(std::make_shared<PlainLocale>()); }
    ScopedLocale(const ScopedLocale&) = delete;
    ScopedLocale& operator=(const ScopedLocale&) = delete;
};

}  // namespace tallowcrest
