#pragma once

#include <QPointer>
#include <QScrollArea>

class QVBoxLayout;

namespace tallowcrest {

/// Whether the key scrolls the page, wherever the focus is. A control that uses it itself accepts
/// its `QEvent::ShortcutOverride`.
bool isPageScrollKey(int key);

/// A frameless area that scrolls `content` vertically and gives it the whole width except
/// `spacing::scrollBar`, which is always reserved for the scroll bar. Takes ownership of `content`.
/// Main thread.
class PageScrollArea final : public QScrollArea {
    Q_OBJECT

public:
    PageScrollArea(QWidget* content, QWidget* parent);

    /// The distance of the top of `widget`, which is in the content, from the top of the view.
    int placeInView(const QWidget& widget) const;
    /// When the content is laid out again, scrolls so that `widget` stays where it is in the view,
    /// until the area is scrolled or `widget` is hidden. Null to keep nothing in place.
    void keepInPlace(QWidget* widget);
    bool isKeepingPlace() const { return kept_ != nullptr; }

signals:
    /// The area was scrolled, other than to keep a widget in place.
    void scrolled();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    QPointer<QWidget> kept_;
    int keptPlace_ = 0;
    bool isArranging_ = false;
};

/// A column layout for the content of such an area, with a page's padding and gaps.
QVBoxLayout* makePageColumn(QWidget& content);

/// Fills `page` with a scroll area over `content`, which becomes no wider than
/// `spacing::widestContent` and its padding.
PageScrollArea* scrollOnPage(QWidget* content, QWidget& page);

}  // namespace tallowcrest
