#include "presentation/words/confirmation_lines.h"

#include <algorithm>
#include <iterator>

#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest::confirmation_lines {

QString processes(std::span<const std::int64_t> pids, std::size_t most) {
    if (pids.empty()) {
        return {};
    }
    const std::size_t named = std::min(pids.size(), most);
    QStringList numbers;
    for (const std::int64_t pid : pids.first(named)) {
        // Without separators, as other tools write them.
        numbers.append(QString::number(pid));
    }
    const auto rest = static_cast<std::int64_t>(pids.size() - named);
    return dashboard_text::processes(static_cast<std::int64_t>(pids.size())) + u": "_s +
           numbers.join(u", "_s) +
           (rest > 0 ? u" and %1 more"_s.arg(dashboard_text::count(rest)) : QString());
}

QString executables(std::size_t count) {
    return count == 1 ? u"Executable"_s : u"Executables"_s;
}

QStringList unreadLines(const QStringList& texts) {
    constexpr qsizetype fewestWordsRead = 3;
    QStringList unread;
    std::ranges::copy_if(texts, std::back_inserter(unread), [](const QString& text) {
        return text.split(u' ', Qt::SkipEmptyParts).size() < fewestWordsRead;
    });
    return unread;
}

}  // namespace tallowcrest::confirmation_lines
