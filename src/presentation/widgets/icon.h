#pragma once

#include <QByteArray>
#include <QIcon>
#include <QPixmap>
#include <QString>
#include <QWidget>

#include "presentation/widgets/theme.h"

namespace tallowcrest {

/// True when a line icon of that name exists. Main thread, like all of this header.
bool hasIcon(const QString& name);

/// The line icon `name` in `color`, `size` device independent pixels wide and high. A null pixmap
/// for an unknown name. Pixmaps are kept in Qt's bounded pixmap cache.
QPixmap tintedIcon(const QString& name, const QColor& color, int size, qreal devicePixelRatio);

/// The line icon `name` for buttons, menus and views. It is tinted with the current theme whenever
/// it is drawn, so it follows changes of the palette. A null icon for an unknown name.
QIcon themedIcon(const QString& name, const ThemeColor& color = &CrestTheme::text);

/// A dial with its needle at `percent` (0 to 100; what is not finite counts as 0), for the status
/// item. `size` is in device independent pixels. With a valid `halo` the dial gets an edge in
/// that colour, which sets it off from a background of its own colour.
QPixmap gaugeIcon(double percent, const QColor& color, int size, qreal devicePixelRatio = 1,
                  const QColor& halo = QColor());

/// The application's own icon, in full colour.
QIcon applicationIcon();
/// The same as an SVG document.
QByteArray applicationIconDocument();

/// A line icon beside a text that says the same; it therefore has no accessible name. An unknown
/// icon leaves its place empty. Main thread.
class IconView : public QWidget {
    Q_OBJECT

public:
    explicit IconView(const QString& icon, const ThemeColor& color = &CrestTheme::text,
                      int size = spacing::iconRegular, QWidget* parent = nullptr);

    void setIcon(const QString& icon);
    const QString& icon() const { return icon_; }
    void setColor(const ThemeColor& color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString icon_;
    ThemeColor color_;
};

}  // namespace tallowcrest
