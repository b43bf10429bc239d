#pragma once

class QScrollArea;
class QVBoxLayout;
class QWidget;

namespace tallowcrest {

/// A frameless area that scrolls `content` vertically and gives it the whole width except
/// `spacing::scrollBar`, which is always reserved for the scroll bar. Takes ownership of `content`.
/// Main thread.
QScrollArea* makePageScrollArea(QWidget* content, QWidget* parent);

/// A column layout for the content of such an area, with a page's padding and gaps.
QVBoxLayout* makePageColumn(QWidget& content);

/// Fills `page` with a scroll area over `content`.
QScrollArea* scrollOnPage(QWidget* content, QWidget& page);

}  // namespace tallowcrest
