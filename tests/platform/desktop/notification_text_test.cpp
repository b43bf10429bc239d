#include "platform/desktop/notification_text.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

TEST(NotificationTextTest, OnlyControlCharactersAreReplaced) {
    struct Case {
        const char* what;
        std::string text;
        QString shown;
    };
    const std::vector<Case> cases{
        {"plain", "photo-indexer", "photo-indexer"},
        {"empty", "", ""},
        {"markup is text here", "<b>x</b> & \"co\"", "<b>x</b> & \"co\""},
        {"line ends and tabs", "a\nb\r\tc", "a?b??c"},
        {"zero byte", std::string("a\0b", 3), "a?b"},
        {"overrides", "\u202Ea\u202Cb", "?a?b"},
        {"no UTF-8", "a\xFF-\xC3", u"a\uFFFD-\uFFFD"_s},
        {"letters of a script from right to left", "\u05D0\u05D1", u"\u05D0\u05D1"_s},
        {"joined emoji", "\U0001F468\u200D\U0001F4BB", u"\U0001F468\u200D\U0001F4BB"_s},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(notificationText(each.text, 100), each.shown) << each.what;
    }
}

TEST(NotificationTextTest, LongTextIsTruncatedAtAWholeCharacter) {
    struct Case {
        const char* what;
        std::string text;
        QString shown;
    };
    // The limit is five units, including the ellipsis.
    const std::vector<Case> cases{
        {"fits", "12345", "12345"},
        {"one too many", "123456", u"1234…"_s},
        {"a pair fits", "12\U0001F600\x39\x39", u"12\U0001F600…"_s},
        {"a pair does not", "123\U0001F600\x39", u"123…"_s},
        {"a combining accent", "123e\u0301x", u"123…"_s},
        {"a character longer than the limit", "e\u0301\u0301\u0301\u0301\u0301\u0301",
         u"e\u0301\u0301\u0301…"_s},
        {"pairs in a character that is too long", "e\U0001F3FB\U0001F3FB\U0001F3FB",
         u"e\U0001F3FB…"_s},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(notificationText(each.text, 5), each.shown) << each.what;
    }
    EXPECT_EQ(notificationText(std::string(10'000, 'x'), 600).size(), 600);
}

TEST(NotificationTextTest, MarkupIsEscaped) {
    EXPECT_EQ(asNotificationMarkup(u"<b>x</b> & \"co\" it's"_s),
              u"&lt;b&gt;x&lt;/b&gt; &amp; &quot;co&quot; it's"_s);
    EXPECT_EQ(asNotificationMarkup(u"&amp;"_s), u"&amp;amp;"_s);
    EXPECT_EQ(asNotificationMarkup(QString()), QString());
}

}  // namespace
}  // namespace tallowcrest
