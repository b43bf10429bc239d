#include "presentation/words/update_lines.h"

#include "presentation/words/dashboard_text.h"
#include "presentation/words/disk_lines.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

QString updateDownloadLine(const std::string& version, std::uint64_t received,
                           std::optional<std::uint64_t> total) {
    constexpr qsizetype longestVersion = 40;
    const auto size = [](std::uint64_t bytes) {
        return sizeText(static_cast<std::int64_t>(bytes));
    };
    const QString line = u"Downloading Tallowcrest Pro %1 · %2"_s.arg(
        dashboard_text::shortText(version, longestVersion), size(received));
    return total ? line + u" of "_s + size(*total) : line;
}

}  // namespace tallowcrest
