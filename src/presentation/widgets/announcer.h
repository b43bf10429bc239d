#pragma once

class QString;
class QWidget;

namespace tallowcrest {

/// Has assistive technology say `text` as a notification of the window of `widget`, whatever has
/// the focus. Draws nothing; an empty text says nothing. For what the owner has just caused and no
/// focused control tells; what changes with each sample must stay silent. Main thread.
void announce(QWidget& widget, const QString& text);

}  // namespace tallowcrest
