#include "presentation/words/plain_lines.h"

#include <cstddef>

#include "presentation/words/dashboard_text.h"

namespace tallowcrest {
namespace {

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

QString plainLines(std::string_view utf8) {
    QString shown;
    while (true) {
        const std::size_t feed = utf8.find('\n');
        shown += safeLine(utf8.substr(0, feed));
        if (feed == std::string_view::npos) {
            return shown;
        }
        shown += u'\n';
        utf8.remove_prefix(feed + 1);
    }
}

}  // namespace tallowcrest
