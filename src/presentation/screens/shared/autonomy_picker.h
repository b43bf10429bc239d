#pragma once

#include <QString>
#include <QWidget>

#include "core/advisor_records.h"

namespace tallowcrest {

class Automation;
class ElidedLabel;
class RefusalLine;
class TabStrip;

/// How much the advisor may do by itself: the choice, what it means, and why one was refused. For
/// use on a card. Main thread.
class AutonomyPicker final : public QWidget {
    Q_OBJECT

public:
    /// The object names of the choices begin with `identifier`: "IDENTIFIER.apprentice".
    explicit AutonomyPicker(const QString& identifier, QWidget* parent = nullptr);

    /// Shows the mode. Another one than before removes a refusal, and so does the end of the
    /// emergency stop, which is the reason for each.
    void setMode(AIAutonomyMode mode, bool isStopEngaged);
    /// Shows why the choice was refused; an empty text removes that.
    void showRefusal(const QString& words);

signals:
    /// The owner chose a mode. The picker stays as it is until `setMode`.
    void modeWanted(tallowcrest::AIAutonomyMode mode);

private:
    AIAutonomyMode mode_ = AIAutonomyMode::apprentice;
    TabStrip* choices_ = nullptr;
    ElidedLabel* explanation_ = nullptr;
    RefusalLine* refusal_ = nullptr;
};

/// Sets what the owner chooses with `picker`, and shows the result at once. `automation` must
/// outlive the widget.
void connectAutonomy(AutonomyPicker& picker, Automation& automation);

}  // namespace tallowcrest
