#pragma once

#include <QColor>
#include <QImage>
#include <QPixmap>
#include <QWidget>

namespace tallowcrest {

/// Whether the focus ring of this colour is drawn at the top edge of the widget.
inline bool isRinged(QWidget& widget, const QColor& ring) {
    return widget.grab().toImage().pixelColor(widget.width() / 2, 1) == ring;
}

}  // namespace tallowcrest
