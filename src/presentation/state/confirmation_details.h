#pragma once

#include <QString>

namespace tallowcrest {

class SystemMonitor;
struct ConfirmationRequest;

/// What a question is about, when that is too long for its message. All empty for a question
/// without such a text.
struct ConfirmationDetails {
    QString name;           ///< of the text, behind "Show" and "Hide"
    QString description;    ///< of the button that shows it
    QString text;           ///< of several lines
    bool areShown = false;  ///< from the beginning
};

/// What would be sent, or which files would be moved. Main thread.
ConfirmationDetails confirmationDetails(SystemMonitor& monitor, const ConfirmationRequest& request);

}  // namespace tallowcrest
