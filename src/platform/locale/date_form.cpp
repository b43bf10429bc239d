#include "platform/locale/date_form.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <ctime>
#include <initializer_list>
#include <iterator>
#include <utility>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "core/text.h"

namespace tallowcrest {
namespace {

using Kind = DatePart::Kind;

/// A format of `strftime`, taken apart.
struct ParsedFormat {
    DateForm form;
    bool hasNames = false;  ///< of a month, for which the form has its figure, or of a weekday
};

void addText(DateForm& form, std::string_view text) {
    if (!form.empty() && form.back().kind == Kind::text) {
        form.back().text += text;
    } else {
        form.push_back({Kind::text, std::string(text)});
    }
}

void parse(std::string_view format, std::string_view halfDays, ParsedFormat& parsed);

/// `conversion` is the letter of a conversion, `isPadded` is false after the flag '-'.
void addConversion(char conversion, bool isPadded, std::string_view halfDays,
                   ParsedFormat& parsed) {
    const auto add = [&](Kind kind, bool padded) { parsed.form.push_back({kind, {}, padded}); };
    switch (conversion) {
        case 'Y':
        case 'y':
            return add(Kind::year, false);
        case 'm':
            return add(Kind::month, isPadded);
        case 'd':
            return add(Kind::day, isPadded);
        case 'e':
            return add(Kind::day, false);
        case 'H':
            return add(Kind::hour, isPadded);
        case 'k':
            return add(Kind::hour, false);
        case 'I':
        case 'l':
            return add(Kind::hourOfHalfDay, false);
        case 'M':
            return add(Kind::minute, true);
        case 'S':
            return add(Kind::second, true);
        case 'p':
        case 'P':
            return add(Kind::halfDay, true);
        case 'D':
            return parse("%m/%d/%y", {}, parsed);
        case 'F':
            return parse("%Y-%m-%d", {}, parsed);
        case 'R':
            return parse("%H:%M", {}, parsed);
        case 'T':
            return parse("%H:%M:%S", {}, parsed);
        case 'r':
            return parse(halfDays, {}, parsed);
        case 'b':
        case 'B':
        case 'h':
            parsed.hasNames = true;
            return add(Kind::month, true);
        case 'a':
        case 'A':
            parsed.hasNames = true;
            return;
        case '%':
            return addText(parsed.form, "%");
        default:
            return;
    }
}

/// `halfDays` is what "%r" stands for.
void parse(std::string_view format, std::string_view halfDays, ParsedFormat& parsed) {
    while (!format.empty()) {
        const std::string_view text = format.substr(0, format.find('%'));
        if (!text.empty()) {
            addText(parsed.form, text);
        }
        format.remove_prefix(std::min(text.size() + 1, format.size()));
        // Flags, a width, and the modifiers for figures and calendars of the locale's own.
        const std::size_t letter =
            std::min(format.find_first_not_of("-_0^#+123456789EO"), format.size());
        if (letter < format.size()) {
            addConversion(format[letter], !format.starts_with('-'), halfDays, parsed);
            format.remove_prefix(letter + 1);
        } else {
            format = {};
        }
    }
}

ParsedFormat parsedFormat(std::string_view format, std::string_view halfDays = {}) {
    ParsedFormat parsed;
    parse(format, halfDays, parsed);
    return parsed;
}

auto partOf(const DateForm& form, Kind kind) {
    return std::find_if(form.begin(), form.end(),
                        [kind](const DatePart& part) { return part.kind == kind; });
}

bool hasAll(const DateForm& form, std::initializer_list<Kind> kinds) {
    return std::all_of(kinds.begin(), kinds.end(), [&form](Kind kind) {
        return std::count_if(form.begin(), form.end(),
                             [kind](const DatePart& part) { return part.kind == kind; }) == 1;
    });
}

DateForm dateForm(const std::string& format) {
    auto [form, hasNames] = parsedFormat(format);
    if (!hasAll(form, {Kind::year, Kind::month, Kind::day})) {
        return parsedFormat("%Y-%m-%d").form;
    }
    if (hasNames) {
        std::erase_if(form, [](const DatePart& part) { return part.kind == Kind::text; });
        form.insert(form.begin() + 2, {Kind::text, "/"});
        form.insert(form.begin() + 1, {Kind::text, "/"});
    }
    return form;
}

DateForm timeForm(const DateConventions& conventions) {
    DateForm form = parsedFormat(conventions.time, conventions.halfDays).form;
    if (hasAll(form, {Kind::hour, Kind::minute, Kind::second})) {
        std::erase_if(form, [](const DatePart& part) { return part.kind == Kind::halfDay; });
        return form;
    }
    const bool hasNames = !conventions.morning.empty() && !conventions.afternoon.empty();
    const bool hasHalfDays =
        hasAll(form, {Kind::hourOfHalfDay, Kind::minute, Kind::second, Kind::halfDay});
    return hasNames && hasHalfDays ? form : parsedFormat("%H:%M:%S").form;
}

/// Without the seconds, and without the text that belongs to them: what separates them from the
/// minutes, or, where each figure has its own unit behind it, their unit.
DateForm withoutSeconds(DateForm form) {
    const auto textAt = [&form](std::ptrdiff_t index) -> std::string {
        const auto size = static_cast<std::ptrdiff_t>(form.size());
        return index >= 0 && index < size ? form[static_cast<std::size_t>(index)].text : "";
    };
    const std::ptrdiff_t minute = partOf(form, Kind::minute) - form.begin();
    const std::ptrdiff_t second = partOf(form, Kind::second) - form.begin();
    const bool isSeparated = textAt(minute - 1) == textAt(second - 1);
    if (!isSeparated) {
        const std::string after = textAt(second + 1);
        if (const std::size_t unit = after.find_first_not_of(' '); unit != std::string::npos) {
            form[static_cast<std::size_t>(second + 1)].text.erase(0, after.find(' ', unit));
        }
    }
    form.erase(form.begin() + second - (isSeparated && second == minute + 2 ? 1 : 0),
               form.begin() + second + 1);
    return form;
}

void appendFigure(std::string& text, int figure, bool isPadded) {
    fmt::format_to(std::back_inserter(text), fmt::runtime(isPadded ? "{:02}" : "{}"), figure);
}

}  // namespace

DateForms dateFormsFrom(const DateConventions& conventions) {
    const DateForm time = timeForm(conventions);
    const DateForm shortTime = withoutSeconds(time);
    DateForm dateAndTime = dateForm(conventions.date);
    addText(dateAndTime, ", ");
    dateAndTime.insert(dateAndTime.end(), shortTime.begin(), shortTime.end());
    return {.dateAndTime = std::move(dateAndTime),
            .time = time,
            .shortTime = shortTime,
            .morning = conventions.morning,
            .afternoon = conventions.afternoon};
}

std::string formed(Date date, const DateForm& form, const DateForms& forms) {
    constexpr int halfDay = 12;
    const std::tm fields = fmt::gmtime(static_cast<std::time_t>(std::floor(date.unixSeconds())));
    std::string text;
    for (const DatePart& part : form) {
        const auto add = [&](int figure) { appendFigure(text, figure, part.isPadded); };
        switch (part.kind) {
            case Kind::text:
                text += part.text;
                break;
            case Kind::year:
                add(fields.tm_year + 1900);
                break;
            case Kind::month:
                add(fields.tm_mon + 1);
                break;
            case Kind::day:
                add(fields.tm_mday);
                break;
            case Kind::hour:
                add(fields.tm_hour);
                break;
            case Kind::hourOfHalfDay:
                add((fields.tm_hour + halfDay - 1) % halfDay + 1);
                break;
            case Kind::minute:
                add(fields.tm_min);
                break;
            case Kind::second:
                add(fields.tm_sec);
                break;
            case Kind::halfDay:
                text += fields.tm_hour < halfDay ? forms.morning : forms.afternoon;
                break;
        }
    }
    return std::string(trimmingWhiteSpace(text));
}

}  // namespace tallowcrest
