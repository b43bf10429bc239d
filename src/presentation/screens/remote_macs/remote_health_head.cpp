#include "presentation/screens/remote_macs/remote_health_head.h"

#include <algorithm>

#include <QEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include "presentation/widgets/figure_text.h"
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
        // The name is what may have to be elided.
        const QString whole =
            shown_.host.isEmpty() ? shown_.name : shown_.name + u" · "_s + shown_.host;
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), toolTipText(whole), this);
        return true;
    }
    return CollapseButton::event(event);
}

RemoteHealthHead::Places RemoteHealthHead::places(int left) const {
    const CrestFonts& fonts = CrestFonts::current();
    // The widest texts to expect in a column.
    const int statusWidth = iconRoom + figuresWidth(fonts.body, u"Connection Blocked"_s);
    const int cpuWidth = figuresWidth(fonts.body, u"CPU 000%"_s);
    const int memoryWidth = iconRoom + figuresWidth(fonts.body, u"Memory 000% · High"_s);
    int right = width() - spacing::cardPadding;
    const auto takeRight = [&right](int top, int height, int width) {
        right -= width;
        const QRect place(right, top, width, height);
        right -= spacing::gap;
        return place;
    };
    Places places;
    if (width() >= oneLineWidth) {
        places.age = takeRight(0, height(), figuresWidth(fonts.caption, u"00/00/00, 00:00 PM"_s));
        places.memory = takeRight(0, height(), memoryWidth);
        places.cpu = takeRight(0, height(), cpuWidth);
        places.status = takeRight(0, height(), statusWidth);
        places.name = QRect(left, 0, std::max(0, right - left), height());
        return places;
    }
    const int top = (height() - 2 * lineHeight) / 2;
    places.status = takeRight(top, lineHeight, statusWidth);
    places.name = QRect(left, top, std::max(0, right - left), lineHeight);
    const int second = top + lineHeight;
    places.cpu = QRect(left, second, cpuWidth, lineHeight);
    places.memory = QRect(places.cpu.right() + spacing::gap, second, memoryWidth, lineHeight);
    const int ageLeft = places.memory.right() + spacing::gap;
    places.age =
        QRect(ageLeft, second, std::max(0, width() - spacing::cardPadding - ageLeft), lineHeight);
    return places;
}

void RemoteHealthHead::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    const CrestFonts& fonts = CrestFonts::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintGround(painter);
    const bool isOneLine = width() >= oneLineWidth;
    const int firstMiddle = isOneLine ? height() / 2 : height() / 2 - lineHeight / 2;
    const Places at = places(paintChevron(painter, spacing::cardPadding, firstMiddle));

    painter.setFont(fonts.heading);
    const int wholeName = figuresWidth(fonts.heading, shown_.name.left(at.name.width())) + 1;
    // A host name beside it leaves the nickname most of the room.
    const int mostName = shown_.host.isEmpty() ? at.name.width() : at.name.width() * 2 / 3;
    QRect name = at.name;
    name.setWidth(std::min(wholeName, mostName));
    drawText(painter, name, Qt::AlignLeft, shown_.name, theme.text);
    painter.setFont(fonts.caption);
    QRect host = at.name;
    host.setLeft(name.right() + spacing::unit + 1);
    drawText(painter, host, Qt::AlignLeft, shown_.host, theme.secondaryText);
    drawText(painter, at.age, Qt::AlignRight, shown_.age, theme.secondaryText);

    painter.setFont(fonts.body);
    const auto drawMarked = [&](QRect place, const QString& icon, const QString& text,
                                const QColor& color) {
        painter.drawPixmap(place.left(), place.center().y() - spacing::iconSmall / 2 + 1,
                           tintedIcon(icon, color, spacing::iconSmall, devicePixelRatioF()));
        drawText(painter, place.adjusted(iconRoom, 0, 0, 0), Qt::AlignLeft, text, color);
    };
    QRect status = at.status;
    if (!isOneLine) {
        // Ends above the age.
        status.setLeft(std::max(
            status.left(),
            status.right() - iconRoom - painter.fontMetrics().horizontalAdvance(shown_.status)));
    }
    drawMarked(status, shown_.statusIcon, shown_.status,
               shown_.isReachable ? theme.good : theme.caution);
    drawText(painter, at.cpu, Qt::AlignLeft, shown_.cpu, theme.text);
    if (shown_.memoryWord.isEmpty()) {
        drawText(painter, at.memory.adjusted(iconRoom, 0, 0, 0), Qt::AlignLeft, shown_.memory,
                 theme.text);
    } else {
        drawMarked(at.memory, u"exclamationmark.triangle.fill"_s,
                   shown_.memory + u" · "_s + shown_.memoryWord, theme.caution);
    }
}

}  // namespace tallowcrest
