#pragma once

#include <vector>

#include <QString>

namespace tallowcrest {

class Observable;
class SystemMonitor;
struct ConfirmationRequest;

/// What a question is about, when that is too long for its message. All empty for a question
/// without such a text.
struct ConfirmationDetails {
    QString name;           ///< of the text, behind "Show" and "Hide"
    QString description;    ///< of the button that shows it
    QString text;           ///< of several lines
    QString note;           ///< above the text; may be empty
    bool areShown = false;  ///< from the beginning
    /// Whether the text changes with the state, while the question stays the same.
    bool followState = false;
};

/// What the details of a question that follow the state are made of, and the desk of questions.
std::vector<Observable*> confirmationSources(SystemMonitor& monitor);

/// What would be sent, or which files would be moved. Main thread.
ConfirmationDetails confirmationDetails(SystemMonitor& monitor, const ConfirmationRequest& request);

}  // namespace tallowcrest
