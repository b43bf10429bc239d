#pragma once

#include <QString>

#include "presentation/widgets/command.h"

class QPushButton;
class QWidget;

namespace tallowcrest {

/// A push button with its automation identifier and its accessible name and description. `icon` may
/// be empty. Main thread.
QPushButton* makeButton(const QString& title, const QString& icon, const QString& identifier,
                        const QString& description, QWidget* parent);

/// The button of a command.
QPushButton* makeButton(const Command& command, const QString& identifier, QWidget* parent);

}  // namespace tallowcrest
