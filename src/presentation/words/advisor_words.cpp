#include "presentation/words/advisor_words.h"

#include "core/text.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest::advisor_words {

QString analysis(bool hasKey) {
    return hasKey ? u"AI Analyze"_s : u"Local Analyze"_s;
}

QString longText(std::string_view utf8) {
    // Five times the longest answer that is to be expected.
    constexpr std::size_t mostCharacters = 20'000;
    const std::string_view drawn = firstCharacters(utf8, mostCharacters);
    const QString shown = dashboard_text::lines(drawn);
    return drawn.size() == utf8.size()
               ? shown
               : shown + u"…\n\n%1 more bytes are not shown."_s.arg(dashboard_text::count(
                             static_cast<std::int64_t>(utf8.size() - drawn.size())));
}

}  // namespace tallowcrest::advisor_words
