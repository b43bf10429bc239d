#pragma once

#include <string>

#include <QString>

namespace tallowcrest {

/// `text` with each control character replaced by "?", truncated to at most `limit` UTF-16 units
/// including an ellipsis. `limit` is at least 2. Pure; any thread.
QString notificationText(const std::string& text, qsizetype limit);

/// `text` escaped for a daemon that interprets markup. Pure; any thread.
QString asNotificationMarkup(const QString& text);

}  // namespace tallowcrest
