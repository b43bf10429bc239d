#pragma once

#include <QString>

class QAbstractButton;
class QKeyEvent;
class QPushButton;
class QWidget;

namespace tallowcrest {

/// A push button with its automation identifier and its accessible name and description. `icon` may
/// be empty. Main thread.
QPushButton* makeButton(const QString& title, const QString& icon, const QString& identifier,
                        const QString& description, QWidget* parent);

/// Clicks the button if the event is a first press of Return or Enter. Returns whether it is for
/// one of these keys, which the button then needs nothing else for. Main thread.
bool pressesByReturn(QAbstractButton& button, const QKeyEvent& event);

/// Enables or disables a button. One that is disabled loses the focus: Qt would move it to the next
/// control, which a key may be about to press. Once it is enabled again it gets the focus back,
/// unless it is hidden or something else has it by then, or another button lost it later. Main
/// thread.
void setButtonEnabled(QAbstractButton& button, bool isEnabled);

/// Marks the one button of a page or sheet that is its next step, or takes the mark away; the style
/// gives it the accent colour. Main thread.
void makePrimary(QPushButton& button, bool isPrimary = true);
/// Whether `makePrimary` was called for it. False for null.
bool isPrimary(const QWidget* widget);

}  // namespace tallowcrest
