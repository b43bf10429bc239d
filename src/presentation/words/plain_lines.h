#pragma once

#include <string_view>

#include <QString>

namespace tallowcrest {

/// A text of several lines, each made safe as `dashboard_text::text` does, with its tabs. Main
/// thread.
QString plainLines(std::string_view utf8);

}  // namespace tallowcrest
