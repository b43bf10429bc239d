#pragma once

#include <QString>

namespace tallowcrest {

/// `plain` as the text of a tool tip, without markup: wrapped into lines of readable width, and
/// elided if it is too long for a tip. Main thread.
QString toolTipText(const QString& plain);

}  // namespace tallowcrest
