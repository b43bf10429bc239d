#pragma once

class QScrollArea;
class QVBoxLayout;
class QWidget;

namespace tallowcrest {

/// A frameless area that scrolls `content` vertically and gives it the whole width but for the
/// scroll bar, whose room is `spacing::scrollBar` and always kept. Takes `content` over. Main
/// thread.
QScrollArea* makePageScrollArea(QWidget* content, QWidget* parent);

/// A column of cards for the content of such an area, in the padding of a page and its gaps.
QVBoxLayout* makePageColumn(QWidget& content);

/// Fills `page` with a scroll area over `content`.
QScrollArea* scrollOnPage(QWidget* content, QWidget& page);

}  // namespace tallowcrest
