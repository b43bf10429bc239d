#include "presentation/screens/remote_macs/remote_health_head.h"

#include <algorithm>

#include <QFontMetrics>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include "presentation/widgets/icon.h"
#include "presentation/widgets/text_lines.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// From this width on, everything is on one line.
constexpr int oneLineWidth = 800;
constexpr int oneLineHeight = 5 * spacing::unit;
constexpr int twoLineHeight = 7 * spacing::unit;
constexpr int lineHeight = 3 * spacing::unit;
constexpr int iconRoom = spacing::iconSmall + 6;

void drawText(QPainter& painter, const QRect& place, Qt::Alignment alignment, const QString& text,
              const QColor& color) {
    const QStringList line = fittedLines(text, painter.font(), place.width(), 1);
    if (!line.isEmpty()) {
        painter.setPen(color);
        painter.drawText(place, static_cast<int>(alignment) | Qt::AlignVCenter | Qt::TextSingleLine,
                         line.constFirst());
    }
}

}  // namespace

RemoteHealthHead::RemoteHealthHead(QWidget* parent) : CollapseButton(false, parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFixedHeight(twoLineHeight);
    RemoteHealthHead::describe();
}

void RemoteHealthHead::show(const remote_health_lines::Head& head) {
    if (head != shown_) {
        shown_ = head;
        setSpokenName(*this, head.spokenName);
        describe();
        update();
    }
}

void RemoteHealthHead::describe() {
    const QString action = isExpanded() ? u"Hides the details of this machine"_s
                                        : u"Shows the details of this machine"_s;
    setSpokenDescription(
        *this, shown_.spokenFigures.isEmpty() ? action : shown_.spokenFigures + u". "_s + action);
}

QSize RemoteHealthHead::sizeHint() const {
    return {48 * spacing::unit, height()};
}

QSize RemoteHealthHead::minimumSizeHint() const {
    return {24 * spacing::unit, height()};
}

void RemoteHealthHead::resizeEvent(QResizeEvent* event) {
    CollapseButton::resizeEvent(event);
    setFixedHeight(width() >= oneLineWidth ? oneLineHeight : twoLineHeight);
}

bool RemoteHealthHead::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const QString whole =
            shown_.host.isEmpty() ? shown_.name : shown_.name + u" · "_s + shown_.host;
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                           isNameElided() ? toolTipText(whole) : QString(), this);
        return true;
    }
    return CollapseButton::event(event);
}

RemoteHealthHead::Places RemoteHealthHead::places() const {
    const CrestFonts& fonts = CrestFonts::current();
    // The widest texts to expect in a column.
    const int statusWidth = iconRoom + figuresWidth(fonts.body, u"Connection Blocked"_s);
    const int cpuWidth = iconRoom + figuresWidth(fonts.body, u"CPU 000% · High"_s);
    const int memoryWidth = iconRoom + figuresWidth(fonts.body, u"Memory 000% · High"_s);
    const bool isOneLine = width() >= oneLineWidth;
    const int top = isOneLine ? 0 : (height() - 2 * lineHeight) / 2;
    const int lineRoom = isOneLine ? height() : lineHeight;
    const int left = spacing::cardPadding + chevronRoom;
    int right = width() - spacing::cardPadding;
    const auto takeRight = [&](int width) {
        right -= width;
        const QRect place(right, top, width, lineRoom);
        right -= spacing::gap;
        return place;
    };
    Places places;
    if (isOneLine) {
        places.age = takeRight(figuresWidth(fonts.caption, u"00/00/00, 00:00 PM"_s));
        places.memory = takeRight(memoryWidth);
        places.cpu = takeRight(cpuWidth);
        places.status = takeRight(statusWidth);
    } else {
        const int second = top + lineHeight;
        places.cpu = QRect(left, second, cpuWidth, lineHeight);
        places.memory = QRect(places.cpu.right() + spacing::gap, second, memoryWidth, lineHeight);
        places.age = QRect(QPoint(places.memory.right() + spacing::gap, second),
                           QPoint(right - 1, second + lineHeight - 1));
        // The status ends above the age.
        places.status = takeRight(std::min(
            statusWidth, iconRoom + QFontMetrics(fonts.body).horizontalAdvance(shown_.status) + 1));
    }
    const int room = std::max(0, right - left);
    // No more characters than that have a place.
    const QString name = shown_.name.left(room);
    // A host name beside it leaves the nickname most of the room.
    const int nameRoom = shown_.host.isEmpty() ? room : room * 2 / 3;
    places.name =
        QRect(left, top, std::min(figuresWidth(fonts.heading, name) + 1, nameRoom), lineRoom);
    places.host = QRect(QPoint(places.name.right() + 1 + spacing::unit, top),
                        QPoint(left + room - 1, top + lineRoom - 1));
    return places;
}

bool RemoteHealthHead::isNameElided() const {
    const CrestFonts& fonts = CrestFonts::current();
    const Places at = places();
    return QFontMetrics(fonts.heading).horizontalAdvance(shown_.name) > at.name.width() ||
           QFontMetrics(fonts.caption).horizontalAdvance(shown_.host) > at.host.width();
}

void RemoteHealthHead::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    const CrestFonts& fonts = CrestFonts::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintGround(painter);
    const Places at = places();
    paintChevron(painter, spacing::cardPadding, at.name.top() + at.name.height() / 2);
    painter.setFont(fonts.heading);
    drawText(painter, at.name, Qt::AlignLeft, shown_.name, theme.text);
    painter.setFont(fonts.caption);
    drawText(painter, at.host, Qt::AlignLeft, shown_.host, theme.secondaryText);
    if (shown_.offline.isEmpty()) {
        drawText(painter, at.age, Qt::AlignRight, shown_.age, theme.secondaryText);
    } else {
        // One below the other, so that the columns of all machines stay in line.
        const int line = painter.fontMetrics().lineSpacing();
        // With large letters, the two are higher than the row that they are in.
        const int top = std::min(at.age.center().y() + 1 - line, height() - 2 * line);
        const QRect upper(at.age.left(), top, at.age.width(), line);
        drawText(painter, upper, Qt::AlignRight, shown_.age, theme.secondaryText);
        drawText(painter, upper.translated(0, line), Qt::AlignRight, shown_.offline, theme.caution);
    }

    painter.setFont(fonts.body);
    const auto drawMarked = [&](const QRect& place, const QString& icon, const QString& text,
                                const QColor& color) {
        painter.drawPixmap(place.left(), place.center().y() - spacing::iconSmall / 2 + 1,
                           tintedIcon(icon, color, spacing::iconSmall, devicePixelRatioF()));
        drawText(painter, place.adjusted(iconRoom, 0, 0, 0), Qt::AlignLeft, text, color);
    };
    drawMarked(at.status, shown_.statusIcon, shown_.status,
               !shown_.isReachable        ? theme.caution
               : shown_.offline.isEmpty() ? theme.good
                                          : theme.secondaryText);
    const auto drawFigure = [&](const QRect& place, const QString& figure, const QString& word) {
        if (word.isEmpty()) {
            drawText(painter, place.adjusted(iconRoom, 0, 0, 0), Qt::AlignLeft, figure, theme.text);
        } else {
            drawMarked(place, u"exclamationmark.triangle.fill"_s, figure + u" · "_s + word,
                       theme.caution);
        }
    };
    drawFigure(at.cpu, shown_.cpu, shown_.cpuWord);
    drawFigure(at.memory, shown_.memory, shown_.memoryWord);
}

}  // namespace tallowcrest
