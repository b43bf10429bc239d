#pragma once

#include <cstddef>
#include <string_view>

#include <QString>

namespace tallowcrest {

/// A text of several lines from elsewhere, such as the answer of a model, each line made safe as
/// `dashboard_text::text` does, with its tabs. Of more than `mostBytes` or `mostLines` only the
/// first are returned, with "…" behind them. Main thread.
QString plainLines(std::string_view utf8, std::size_t mostBytes, qsizetype mostLines);

}  // namespace tallowcrest
