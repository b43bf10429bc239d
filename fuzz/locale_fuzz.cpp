#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "core/text.h"
#include "platform/locale/posix_locale.h"
#include "tests/support/test_locales.h"

#include "fuzz/require.h"

namespace {

using namespace tallowcrest;

void checkOrder(const Locale& locale, std::string_view a, std::string_view b, std::string_view c) {
    const auto ab = locale.compareIgnoringCase(a, b);
    const auto bc = locale.compareIgnoringCase(b, c);
    const auto ac = locale.compareIgnoringCase(a, c);
    require(locale.compareIgnoringCase(a, a) == 0);
    require(locale.compareIgnoringCase(b, a) == (0 <=> ab));
    if (ab <= 0 && bc <= 0) {
        require(ac <= 0);
        require(ac == 0 ? (ab == 0 && bc == 0) : (ab < 0 || bc < 0));
    }
}

void checkSearch(const Locale& locale, std::string_view text, std::string_view part) {
    require(locale.containsIgnoringCase(text, text));
    require(locale.containsIgnoringCase(text, ""));
    if (locale.containsIgnoringCase(text, part) && locale.containsIgnoringCase(part, text)) {
        require(text.empty() == part.empty());
    }
}

void checkNumber(const Locale& locale, double value, int digits) {
    const std::string text = locale.decimal(value, digits);
    require(!text.empty());
    require(isValidUTF8(text));
}

void checkDate(const Locale& locale, double secondsSinceReference) {
    const Date date{secondsSinceReference};
    for (const std::string& text : {locale.dateAndTime(date), locale.timeOfDay(date)}) {
        require(!text.empty());
        require(isValidUTF8(text));
        require(text.find_first_of("\t\n\r") == std::string::npos);
        require((text == Locale::unknownDate) == !Locale::hasForm(date));
    }
}

/// The plain form can be read back.
void checkPlainNumber(double value) {
    constexpr double exactThousandths = 1e9;
    if (std::abs(value) < exactThousandths) {
        const double read = std::strtod(PlainLocale().decimal(value, 3).c_str(), nullptr);
        require(std::abs(read - value) <= 0.0005000001);
        require(read != 0.0 || !std::signbit(read));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const PosixLocale english({"en_US", "en_US"});
    static const PosixLocale german({"de_DE", "de_DE"});
    static const PosixLocale turkish({"tr_TR", "tr_TR"});
    static const PosixLocale persian({"fa_IR", "fa_IR"});
    static const PlainLocale plain;

    double value = 0.0;
    if (size < sizeof(value) + 1) {
        return 0;
    }
    std::memcpy(&value, data, sizeof(value));
    const int digits = static_cast<int>(data[sizeof(value)] % 20) - 2;
    const std::string bytes(data + sizeof(value) + 1, data + size);
    const std::string_view all = bytes;
    const std::string_view a = all.substr(0, all.size() / 3);
    const std::string_view b = all.substr(a.size(), a.size());
    const std::string_view c = all.substr(a.size() + b.size());

    checkPlainNumber(value);
    for (const Locale* locale : std::array<const Locale*, 4>{&english, &german, &turkish, &plain}) {
        checkOrder(*locale, a, b, c);
        checkOrder(*locale, b, c, a);
        checkSearch(*locale, all, b);
        checkNumber(*locale, value, digits);
        checkDate(*locale, value);
    }
    // Most doubles are outside the range of dates.
    constexpr double secondsInAnyForm = 3.2e11;
    const double someDate = std::remainder(value, secondsInAnyForm);
    for (const Locale* locale : std::array<const Locale*, 3>{&german, &persian, &plain}) {
        checkDate(*locale, someDate);
    }
    return 0;
}
