#pragma once

#include <QString>

class QPushButton;
class QWidget;

namespace tallowcrest {

/// A push button with its automation identifier and its accessible name and description. `icon` may
/// be empty. Main thread.
QPushButton* makeButton(const QString& title, const QString& icon, const QString& identifier,
                        const QString& description, QWidget* parent);

}  // namespace tallowcrest
