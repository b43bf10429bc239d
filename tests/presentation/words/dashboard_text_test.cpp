#include "presentation/words/dashboard_text.h"

#include <ctime>
#include <string>

#include <gmock/gmock.h>

#include "tests/presentation/scoped_locale.h"
#include "tests/support/numbers.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// Gives the whole process a locale and a time zone for one test.
class Place {
public:
    explicit Place(const char* locale, const char* zone = "UTC")
        : locale_(locale), zoneBefore_(qgetenv("TZ")) {
        qputenv("TZ", zone);
        tzset();
    }
    ~Place() {
        if (zoneBefore_.isEmpty()) {
            qunsetenv("TZ");
        } else {
            qputenv("TZ", zoneBefore_);
        }
        tzset();
    }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

private:
    ScopedLocale locale_;
    QByteArray zoneBefore_;
};

SystemSnapshot snapshotOf(double cpu, double pressure) {
    SystemSnapshot snapshot;
    snapshot.cpuPercent = cpu;
    snapshot.memory.pressure = pressure;
    return snapshot;
}

TEST(DashboardText, TextIsOneLineWithoutControlCharacters) {
    struct Case {
        const char* given;
        const char* shown;
    };
    for (const Case& each :
         {Case{"editor", "editor"}, Case{"", ""}, Case{"Zoë · 東京", "Zoë · 東京"},
          Case{"<b>a</b> %1 & b", "<b>a</b> %1 & b"}, Case{"a\xff", "a\uFFFD"},
          Case{"two\nlines\t\x1b", "two\uFFFDlines\uFFFD\uFFFD"},
          Case{"two\u2028lines", "two\uFFFDlines"}, Case{"\u202Egnp.exe", "\uFFFDgnp.exe"}}) {
        EXPECT_EQ(dashboard_text::text(each.given).toStdString(), each.shown);
    }
}

TEST(DashboardText, TextHidesNothingAndStaysInItsLine) {
    struct Case {
        const char* given;
        const char* shown;
    };
    for (const Case& each :
         {Case{"bash\u200B", "bash\uFFFD"},              // zero-width space
          Case{"ba\u200Dsh", "ba\uFFFDsh"},              // a joiner in Latin text
          Case{"\u200Dbash\u200D", "\uFFFDbash\uFFFD"},  // a joiner at an end
          Case{"ba\u2060\uFEFFsh", "ba\uFFFD\uFFFDsh"},  // word joiner, byte-order mark
          Case{"ba\u00ADsh", "ba\uFFFDsh"},              // soft hyphen
          Case{"\u3164\uFFA0\u2800", "\uFFFD\uFFFD\uFFFD"},
          Case{"a\U000E0041", "a\uFFFD"},  // a tag character
          Case{"می\u200Cخواهم", "می\u200Cخواهم"},
          Case{"👩\u200D🚀", "👩\u200D🚀"},
          Case{"❤\uFE0F\u200D🔥", "❤\uFE0F\u200D🔥"},
          Case{"bash\uFE0F", "bash\uFFFD"},
          Case{"👩🏽\u200D🚀", "👩🏽\u200D🚀"},
          Case{"↔\uFE0F", "↔\uFE0F"},
          Case{"क्\u200Dष", "क्\u200Dष"},
          Case{"ế\u200Cệ", "ế\uFFFDệ"},            // Vietnamese is Latin text too
          Case{"工\uFE00", "工\uFFFD"},            // no variant that a reader could tell
          Case{"a\u17B4\u17B5", "a\uFFFD\uFFFD"},  // vowels without a glyph
          Case{"–\u200D–", "–\uFFFD–"},
          Case{"ba\uFE00\U000E0100sh", "ba\uFFFD\uFFFDsh"},
          Case{"Zoe\u0308", "Zoe\u0308"},
          Case{"a\u0300\u0301\u0302\u0303\u0304b\u0300", "a\u0300\u0301\u0302b\u0300"},
          Case{"กำ", "กำ"}}) {
        EXPECT_EQ(dashboard_text::text(each.given).toStdString(), each.shown);
    }
}

TEST(DashboardText, PercentagesAreRoundedToWholeOnes) {
    struct Case {
        double percent;
        int whole;
    };
    for (const Case& each : {Case{0.0, 0}, Case{0.49, 0}, Case{0.5, 1}, Case{41.5, 42},
                             Case{99.4, 99}, Case{99.5, 100}, Case{-0.4, 0}, Case{-1.2, -1},
                             Case{1e300, 100'000}, Case{nan, 0}, Case{infinity, 0}}) {
        EXPECT_EQ(dashboard_text::wholePercent(each.percent), each.whole) << each.percent;
    }
    EXPECT_EQ(dashboard_text::percentText(41.5), u"42%"_s);
}

TEST(DashboardText, WholeNumbersAreInTheFormatOfTheLocale) {
    {
        const Place place("en_US");
        EXPECT_EQ(dashboard_text::count(1'200), u"1,200"_s);
        EXPECT_EQ(dashboard_text::percentText(1'599.96), u"1,600%"_s);
        EXPECT_EQ(dashboard_text::sessionNote(2160), u"Current session · last 2,160 seconds"_s);
    }
    const Place place("de_DE");
    EXPECT_EQ(dashboard_text::count(-1'200), u"-1.200"_s);
    EXPECT_EQ(dashboard_text::cpuDetail(1'000.0), u"1.000% normalized across cores"_s);
    EXPECT_EQ(dashboard_text::warnAt(82.0), u"Warn at 82%"_s);
}

TEST(DashboardText, MenuBarLabelAndPanelGiveBothFigures) {
    const Place place("en_US");
    const SystemSnapshot snapshot = snapshotOf(12.4, 33.5);
    EXPECT_EQ(dashboard_text::menuBarLabel(snapshot), u"CPU 12% MEM 34%"_s);
    EXPECT_EQ(dashboard_text::panelLoad(snapshot), u"CPU 12% · Memory 34%"_s);
}

TEST(DashboardText, TopGroupIsNamedWithItsMemory) {
    const Place place("en_US");
    SystemSnapshot snapshot;
    EXPECT_EQ(dashboard_text::panelTopGroup(snapshot), QString());
    snapshot.appImpacts.push_back({"Browser", 3, 10.0, 1536.0, 7, 0});
    snapshot.appImpacts.push_back({"Editor", 1, 1.0, 9000.0, 8, 0});
    // Line breaks in a name are replaced; placeholders are not filled in.
    for (const auto& [name, shown] :
         {std::pair{"Browser", "Browser"}, {"a\nb", "a\uFFFDb"}, {"%1 %2 %3", "%1 %2 %3"}}) {
        snapshot.appImpacts.front().name = name;
        EXPECT_EQ(dashboard_text::panelTopGroup(snapshot),
                  u"Top: "_s + QString::fromUtf8(shown) + u" · 1.5 GB"_s);
    }
}

TEST(DashboardText, LatestRecommendationHasItsSeverity) {
    Recommendation recommendation;
    recommendation.title = "%2 is busy";
    EXPECT_EQ(dashboard_text::panelLatest(recommendation), u"%2 is busy · Info"_s);
    recommendation.title = "Memory is tight";
    for (const auto& [severity, word] : {std::pair{Recommendation::Severity::info, "Info"},
                                         std::pair{Recommendation::Severity::caution, "Caution"},
                                         std::pair{Recommendation::Severity::urgent, "Urgent"}}) {
        recommendation.severity = severity;
        EXPECT_EQ(dashboard_text::panelLatest(recommendation),
                  u"Memory is tight · "_s + QString::fromLatin1(word));
    }
}

TEST(DashboardText, FiguresFollowTheLocaleButWordsDoNot) {
    struct Case {
        const char* locale;
        const char* memory;
        const char* reclaimable;
        const char* small;
        const char* nearlyOne;
        const char* large;
    };
    MemorySnapshot memory;
    memory.totalGB = 15.96;
    memory.usedGB = 4.25;
    memory.freeGB = 1234.56;
    memory.wiredGB = 0.04;
    memory.compressedGB = 0.0;
    for (const Case& each :
         {Case{"en_US", "4.3 GB used of 16.0 GB",
               "1,234.6 GB free · Wired 0.0 GB · Compressed 0.0 GB", "0 MB", "1,023 MB", "1.5 GB"},
          Case{"de_DE", "4,3 GB used of 16,0 GB",
               "1.234,6 GB free · Wired 0,0 GB · Compressed 0,0 GB", "0 MB", "1.023 MB",
               "1,5 GB"}}) {
        const Place place(each.locale);
        EXPECT_EQ(dashboard_text::memoryDetail(memory), QString::fromUtf8(each.memory));
        EXPECT_EQ(dashboard_text::reclaimableDetail(memory), QString::fromUtf8(each.reclaimable));
        EXPECT_EQ(dashboard_text::memoryText(0.4), QString::fromUtf8(each.small));
        EXPECT_EQ(dashboard_text::memoryText(1023.4), QString::fromUtf8(each.nearlyOne));
        EXPECT_EQ(dashboard_text::memoryText(1536.0), QString::fromUtf8(each.large));
    }
}

TEST(DashboardText, FiguresAreRounded) {
    const Place place("en_US");
    EXPECT_EQ(dashboard_text::memoryText(1023.49), u"1,023 MB"_s);
    EXPECT_EQ(dashboard_text::memoryText(1023.5), u"1.0 GB"_s);
    EXPECT_EQ(dashboard_text::memoryText(1024.0), u"1.0 GB"_s);
    EXPECT_EQ(dashboard_text::memoryText(nan), u"0 MB"_s);
    EXPECT_EQ(dashboard_text::cpuDetail(12.5), u"13% normalized across cores"_s);
    EXPECT_EQ(dashboard_text::memoryDetail({}), u"0.0 GB used of 0.0 GB"_s);
    EXPECT_EQ(dashboard_text::gigabytes(0.25), u"0.3"_s);
}

TEST(DashboardText, NotesOfTheSession) {
    EXPECT_EQ(dashboard_text::sessionNote(0), u"Current session · last 0 seconds"_s);
    EXPECT_EQ(dashboard_text::sessionNote(720), u"Current session · last 720 seconds"_s);
    EXPECT_EQ(dashboard_text::timelineCaption(44),
              u"Current session · last 44 seconds · updates every 4 seconds"_s);
    EXPECT_EQ(dashboard_text::averageAndThreshold(11.6, 82.0), u"Avg 12% · Warn 82%"_s);
    EXPECT_EQ(dashboard_text::warnAt(82.4), u"Warn at 82%"_s);
}

TEST(DashboardText, SortStatusHasTheLocalTimeOfTheSample) {
    // 2026-03-09T05:03:55Z
    const Date sampledAt = Date::fromUnixSeconds(1773032635.9);
    {
        const Place place("en_US", "UTC");
        EXPECT_EQ(dashboard_text::sortStatus(u"Impact ↓"_s, 120, sampledAt).simplified(),
                  u"Sorted by Impact ↓ · 120 visible processes · updated 5:03:55 AM"_s);
    }
    const Place place("de_DE", "Asia/Tokyo");
    EXPECT_EQ(dashboard_text::sortStatus(u"Impact ↓"_s, 0, sampledAt),
              u"Sorted by Impact ↓ · 0 visible processes · updated 14:03:55"_s);
}

TEST(DashboardText, TimesHaveSecondsAndNoTimeZoneInEveryLocale) {
    // 2026-03-09T14:03:55Z
    const Date date = Date::fromUnixSeconds(1773065035.0);
    const std::pair<const char*, QString> cases[] = {
        {"C", u"2:03:55 PM"_s},   {"en_GB", u"14:03:55"_s},     {"de_DE", u"14:03:55"_s},
        {"fi_FI", u"14.03.55"_s}, {"ja_JP", u"14時03分55秒"_s}, {"fr_CA", u"14 h 03 min 55 s"_s},
    };
    for (const auto& [locale, expected] : cases) {
        const Place place(locale);
        // Locales use different kinds of white space.
        EXPECT_EQ(dashboard_text::timeText(date).simplified().toStdString(), expected.toStdString())
            << locale;
    }
    for (const char* locale : {"ko_KR", "es_ES", "zh_CN", "ar_EG", "bg_BG", "vi_VN"}) {
        const Place place(locale);
        const QString time = dashboard_text::timeText(date);
        EXPECT_FALSE(time.contains(u"UTC"_s)) << locale << ' ' << time.toStdString();
        EXPECT_FALSE(time.contains(u'(')) << locale << ' ' << time.toStdString();
        EXPECT_TRUE(time.contains(dashboard_text::decimal(55, 0)))
            << locale << ' ' << time.toStdString();
    }
}

TEST(DashboardText, DayIsThatOfLocalTime) {
    // 2026-03-09T14:03:55Z
    const Date date = Date::fromUnixSeconds(1773065035.0);
    constexpr std::int64_t ninthOfMarch = 20'521;  // in days since 1970-01-01
    {
        const Place place("en_US", "UTC");
        EXPECT_EQ(dashboard_text::localDay(date), ninthOfMarch);
    }
    // Ten hours ahead.
    const Place place("en_US", "XYZ-10");
    EXPECT_EQ(dashboard_text::localDay(date), ninthOfMarch + 1);
}

TEST(DashboardText, ShortTimesOfAnotherDayHaveADate) {
    const Place place("de_DE");
    // 2026-03-09T14:03:55Z
    constexpr double now = 1773065035.0;
    struct Case {
        double seconds;
        const char* text;
    };
    for (const Case& each :
         {Case{now, "14:03"}, Case{now - 14 * 3600, "00:03"},
          Case{now - 15 * 3600, "08.03.2026, 23:03"}, Case{now + 10 * 3600, "10.03.2026, 00:03"}}) {
        EXPECT_EQ(dashboard_text::shortTimeText(Date::fromUnixSeconds(each.seconds),
                                                Date::fromUnixSeconds(now))
                      .toStdString(),
                  each.text);
    }
    const auto ofPoint = [](double seconds) {
        return dashboard_text::pointTimeText(Date::fromUnixSeconds(seconds),
                                             Date::fromUnixSeconds(now))
            .toStdString();
    };
    EXPECT_EQ(ofPoint(now - 5), "14:03:50");
    EXPECT_EQ(ofPoint(now - 15 * 3600), "08.03.2026, 23:03");
}

TEST(DashboardText, AgeIsRoundedDownAndNeverFreshWhenItIsUnknown) {
    const Place place("en_US");
    const auto ageAfter = [](double seconds) {
        return dashboard_text::age({1000.0}, {1000.0 + seconds}).toStdString();
    };
    EXPECT_EQ(ageAfter(0), "just now");
    EXPECT_EQ(ageAfter(59.9), "just now");
    EXPECT_EQ(ageAfter(60), "1 min ago");
    EXPECT_EQ(ageAfter(3599), "59 min ago");
    EXPECT_EQ(ageAfter(3600), "1 h ago");
    EXPECT_EQ(ageAfter(86399), "23 h ago");
    for (const double unknown : {86400.0, -1.0, -1e7}) {
        EXPECT_THAT(ageAfter(unknown), testing::ContainsRegex("[0-9]:[0-9][0-9]")) << unknown;
    }
    EXPECT_NE(ageAfter(86400.0 * 3), ageAfter(0));
}

TEST(DashboardText, AShortTextIsCutBetweenCharacters) {
    const std::string face = "\xF0\x9F\x98\x80";
    EXPECT_EQ(dashboard_text::shortText("mini", 4), u"mini"_s);
    EXPECT_EQ(dashboard_text::shortText("minis", 4), u"mini…"_s);
    EXPECT_EQ(dashboard_text::shortText("mi" + face, 3), u"mi…"_s);
    EXPECT_EQ(dashboard_text::shortText(face + face + face, 4),
              dashboard_text::text(face + face) + u'…');
    EXPECT_EQ(dashboard_text::shortText(std::string(15, 'x') + face, 4), u"xxxx…"_s);
    EXPECT_EQ(dashboard_text::shortText("", 4), QString());
}

TEST(DashboardText, AnyStoredDateHasAText) {
    for (const double seconds : {1e300, -1e300, 0.0}) {
        EXPECT_FALSE(dashboard_text::shortTimeText(Date{seconds}, Date{}).isEmpty()) << seconds;
        EXPECT_FALSE(dashboard_text::timeText(Date{seconds}).isEmpty()) << seconds;
    }
}

}  // namespace
}  // namespace tallowcrest
