#include "presentation/words/plain_lines.h"

#include <algorithm>

#include "presentation/words/dashboard_text.h"

namespace tallowcrest {
namespace {

/// The end of the longest part of `utf8` of at most `most` bytes that cuts no character in two.
std::size_t wholeCharacters(std::string_view utf8, std::size_t most) {
    std::size_t end = std::min(utf8.size(), most);
    while (end > 0 && end < utf8.size() && (utf8[end] & '\xC0') == '\x80') {
        --end;
    }
    return end;
}

/// Tabs align the columns of a report.
QString safeLine(std::string_view line) {
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    QString shown;
    while (true) {
        const std::size_t tab = line.find('\t');
        shown += dashboard_text::text(line.substr(0, tab));
        if (tab == std::string_view::npos) {
            return shown;
        }
        shown += u'\t';
        line.remove_prefix(tab + 1);
    }
}

}  // namespace

QString plainLines(std::string_view utf8, std::size_t mostBytes, qsizetype mostLines) {
    const std::size_t end = wholeCharacters(utf8, mostBytes);
    QString shown;
    std::string_view rest = utf8.substr(0, end);
    for (qsizetype lines = 1; lines <= mostLines; ++lines) {
        const std::size_t feed = rest.find('\n');
        shown += safeLine(rest.substr(0, feed));
        if (feed == std::string_view::npos) {
            return end < utf8.size() ? shown + u'…' : shown;
        }
        rest.remove_prefix(feed + 1);
        if (lines < mostLines) {
            shown += u'\n';
        }
    }
    return shown + u'…';
}

}  // namespace tallowcrest
