#pragma once

#include <QString>

class QPushButton;
class QWidget;

namespace tallowcrest {

/// A push button with its automation identifier and its accessible name and description. `icon` may
/// be empty. Main thread.
QPushButton* makeButton(const QString& title, const QString& icon, const QString& identifier,
                        const QString& description, QWidget* parent);

/// Marks the one button of a page or sheet that is its next step; the style gives it the accent
/// colour. Main thread.
void makePrimary(QPushButton& button);
/// Whether `makePrimary` was called for it. False for null.
bool isPrimary(const QWidget* widget);

}  // namespace tallowcrest
