#include "presentation/widgets/icon.h"

#include <cmath>

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <QtMath>

#include "presentation/widgets/graph_geometry.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

// The drawing grid and stroke of every line icon.
constexpr double grid = 24;
constexpr double stroke = 1.75;
// A dial leaves the bottom quarter of its circle open.
constexpr double dialStart = 225;
constexpr double dialSpan = 270;
constexpr QLatin1String applicationName("tallowcrest");

QString pathOf(const QString& name) {
    return u":/icons/"_s + name + u".svg"_s;
}

QPixmap rendered(const QString& path, const QSize& pixels) {
    QSvgRenderer renderer(path);
    if (!renderer.isValid() || pixels.isEmpty()) {
        return {};
    }
    QPixmap pixmap(pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    renderer.render(&painter);
    return pixmap;
}

/// `pixels` counts physical pixels.
QPixmap tintedPixels(const QString& name, const QColor& color, const QSize& pixels) {
    const QString key = u"crest/%1/%2/%3x%4"_s.arg(name)
                            .arg(color.rgba(), 8, 16, QChar(u'0'))
                            .arg(pixels.width())
                            .arg(pixels.height());
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap)) {
        return pixmap;
    }
    pixmap = rendered(pathOf(name), pixels);
    if (pixmap.isNull()) {
        return pixmap;
    }
    {
        QPainter painter(&pixmap);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(pixmap.rect(), color);
    }
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

/// A dial on the drawing grid, each of its strokes wider by `edge` on either side.
void drawDial(QPainter& painter, double percent, const QColor& color, double edge) {
    painter.setPen(
        QPen(color, stroke + 0.25 + 2 * edge, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    const QPointF center(12, 13);
    constexpr double radius = 9.4;
    painter.drawArc(QRectF(center.x() - radius, center.y() - radius, 2 * radius, 2 * radius),
                    qRound(dialStart * 16), qRound(-dialSpan * 16));
    const double angle = qDegreesToRadians(dialStart - dialSpan * safeGraphValue(percent) / 100);
    const QPointF direction(std::cos(angle), -std::sin(angle));
    painter.drawLine(center, center + direction * 6.2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(center, 2.1 + edge, 2.1 + edge);
}

class ThemedIconEngine : public QIconEngine {
public:
    ThemedIconEngine(QString name, const ThemeColor& color)
        : name_(std::move(name)), color_(color) {}

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        return tintedPixels(name_, colorFor(mode), squareWithin(size));
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const qreal ratio = painter->device()->devicePixelRatioF();
        const QSize square = squareWithin(rect.size());
        QPixmap pixmap = tintedPixels(name_, colorFor(mode), (QSizeF(square) * ratio).toSize());
        QRect target(QPoint(), square);
        target.moveCenter(rect.center());
        painter->drawPixmap(target, pixmap);
    }

    QIconEngine* clone() const override { return new ThemedIconEngine(*this); }
    QString key() const override { return u"tallowcrest"_s; }

private:
    static QSize squareWithin(const QSize& size) {
        const int side = std::min(size.width(), size.height());
        return {side, side};
    }

    QColor colorFor(QIcon::Mode mode) const {
        // The colour in which a highlighted menu entry draws its text.
        if (mode == QIcon::Selected || mode == QIcon::Active) {
            return QGuiApplication::palette().color(QPalette::HighlightedText);
        }
        const CrestTheme& theme = CrestTheme::current();
        QColor color = color_.in(theme);
        if (mode == QIcon::Disabled) {
            color.setAlphaF(0.4F);
        }
        return color;
    }

    QString name_;
    ThemeColor color_;
};

}  // namespace

bool hasIcon(const QString& name) {
    return !name.isEmpty() && !name.contains(u'/') && name != applicationName &&
           QFile::exists(pathOf(name));
}

QPixmap tintedIcon(const QString& name, const QColor& color, int size, qreal devicePixelRatio) {
    if (!hasIcon(name)) {
        return {};
    }
    const int pixels = qCeil(size * devicePixelRatio);
    QPixmap pixmap = tintedPixels(name, color, {pixels, pixels});
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}

QIcon themedIcon(const QString& name, const ThemeColor& color) {
    return hasIcon(name) ? QIcon(new ThemedIconEngine(name, color)) : QIcon();
}

QPixmap gaugeIcon(double percent, const QColor& color, int size, qreal devicePixelRatio,
                  const QColor& halo) {
    const int pixels = qCeil(size * devicePixelRatio);
    QPixmap pixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixels / grid, pixels / grid);
    if (halo.isValid()) {
        constexpr double haloWidth = 1.25;
        drawDial(painter, percent, halo, haloWidth);
    }
    drawDial(painter, percent, color, 0);
    painter.end();
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}

QIcon applicationIcon() {
    QIcon icon;
    for (const int size : {16, 32, 48, 128}) {
        icon.addPixmap(rendered(pathOf(QString(applicationName)), {size, size}));
    }
    return icon;
}

QByteArray applicationIconDocument() {
    QFile file(pathOf(QString(applicationName)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

IconView::IconView(const QString& icon, const ThemeColor& color, int size, QWidget* parent)
    : QWidget(parent), icon_(icon), color_(color) {
    setFixedSize(size, size);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void IconView::setIcon(const QString& icon) {
    if (icon != icon_) {
        icon_ = icon;
        update();
    }
}

void IconView::setColor(const ThemeColor& color) {
    if (color != color_) {
        color_ = color;
        update();
    }
}

void IconView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.drawPixmap(
        0, 0, tintedIcon(icon_, color_.in(CrestTheme::current()), width(), devicePixelRatioF()));
}

}  // namespace tallowcrest
