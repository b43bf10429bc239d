#pragma once

#include <string>

#include <QString>

namespace tallowcrest {

/// `text` as a notification may show it: without control characters, each of which becomes "?", and
/// at most `limit` UTF-16 units long, an ellipsis for what was left out among them. `limit` is 2 at
/// least. Pure; any thread.
QString notificationText(const std::string& text, qsizetype limit);

/// `text` for a daemon that reads markup, so that it shows letter for letter. Pure; any thread.
QString asNotificationMarkup(const QString& text);

}  // namespace tallowcrest
