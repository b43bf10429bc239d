#pragma once

#include <QString>

#include "presentation/words/commands.h"

class QPushButton;
class QWidget;

namespace tallowcrest {

/// The push button of a command, with its automation identifier. Main thread.
QPushButton* makeButton(const Command& command, const QString& identifier, QWidget* parent);

}  // namespace tallowcrest
