#pragma once

#include <QString>

namespace tallowcrest {

/// `plain` as a tool tip, whatever it holds: in lines of a width that can be read, each broken
/// where a word or the room ends. Long beyond a tip's use, it ends in an ellipsis. Main thread.
QString toolTipText(const QString& plain);

}  // namespace tallowcrest
