#pragma once

class QScrollArea;
class QWidget;

namespace tallowcrest {

/// A frameless area that scrolls `content` vertically and gives it the whole width but for the
/// scroll bar, whose room is `spacing::scrollBar` and always kept. Takes `content` over. Main
/// thread.
QScrollArea* makePageScrollArea(QWidget* content, QWidget* parent);

}  // namespace tallowcrest
