#include "presentation/words/advisor_words.h"

#include <string>

#include "advisor/provider_reply.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest::advisor_words {

QString analysis(bool hasKey) {
    return hasKey ? u"AI Analyze"_s : u"Local Analyze"_s;
}

QString longText(std::string_view utf8) {
    return dashboard_text::lines(boundedAnswer(std::string(utf8)));
}

}  // namespace tallowcrest::advisor_words
