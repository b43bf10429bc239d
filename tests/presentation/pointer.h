#pragma once

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>

namespace tallowcrest {

/// Sends a mouse event to `widget` without moving the real pointer.
inline void sendMouse(QWidget& widget, QEvent::Type type, const QPoint& place,
                      Qt::MouseButton button = Qt::NoButton,
                      Qt::MouseButtons buttons = Qt::NoButton) {
    QMouseEvent event(type, place, widget.mapToGlobal(place), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
}

inline void movePointer(QWidget& widget, const QPoint& place) {
    sendMouse(widget, QEvent::MouseMove, place);
}

inline void pointerLeaves(QWidget& widget) {
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&widget, &leave);
}

}  // namespace tallowcrest
