#pragma once

#include <QString>

#include "presentation/words/commands.h"

class QPushButton;
class QWidget;

namespace tallowcrest {

class DangerButton;

/// The push button of a command, with its automation identifier. Main thread.
QPushButton* makeButton(const Command& command, const QString& identifier, QWidget* parent);

/// The button of a command that stops or quits something, which looks the same wherever it is. It
/// has no icon. Main thread.
DangerButton* makeDangerButton(const Command& command, const QString& identifier, QWidget* parent);

}  // namespace tallowcrest
