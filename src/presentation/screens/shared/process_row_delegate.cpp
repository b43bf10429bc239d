#include "presentation/screens/shared/process_row_delegate.h"

#include <algorithm>

#include <QAbstractItemView>
#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>

#include "presentation/screens/shared/process_table_model.h"
#include "presentation/widgets/figure_text.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/process_words.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int cellPadding = spacing::unit;
constexpr int buttonPadding = 12;
constexpr int buttonHeight = 20;
constexpr int selectionBarWidth = 3;
constexpr int markHeight = 16;
constexpr int markIconSize = 12;
constexpr int markIconGap = 4;
/// Enough of a long name to tell it from others. A shorter name is shown whole.
constexpr int enoughOfName = 96;
/// A name that is cut to less than this tells more than the note beside it.
constexpr int leastOfName = 48;
/// The protected mark without its word.
constexpr int lockWidth = markIconSize + 2 * spacing::unit;

QString protectedWord() {
    return u"Protected"_s;
}

QRect buttonRect(const QRect& cell) {
    const int width = ProcessRowDelegate::actionWidth() - 2 * cellPadding;
    return {cell.left() + cellPadding, cell.center().y() - buttonHeight / 2 + 1, width,
            buttonHeight};
}

/// A click just above or below the button is meant for it too.
QRect hitRect(const QRect& cell) {
    const QRect button = buttonRect(cell);
    return {button.left(), cell.top(), button.width(), cell.height()};
}

void paintRowBackground(QPainter& painter, const QStyleOptionViewItem& option,
                        const QModelIndex& index, bool isHovered, const CrestTheme& theme) {
    if (!index.data(ProcessTableModel::isSelectedRole).toBool()) {
        if (isHovered) {
            painter.fillRect(option.rect, theme.hoveredRow);
        }
        return;
    }
    painter.fillRect(option.rect, theme.selectedRow);
    if (index.column() == ProcessTableModel::processColumn) {
        painter.fillRect(
            QRect(option.rect.topLeft(), QSize(selectionBarWidth, option.rect.height())),
            theme.accent);
    }
}

void paintProtectedMark(QPainter& painter, const QRect& mark, const CrestTheme& theme) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(theme.hairline);
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(mark).adjusted(0.5, 0.5, -0.5, -0.5), mark.height() / 2.0,
                            mark.height() / 2.0);
    const int iconTop = mark.center().y() - markIconSize / 2 + 1;
    painter.drawPixmap(mark.left() + spacing::unit, iconTop,
                       tintedIcon(u"lock.fill"_s, theme.secondaryText, markIconSize,
                                  painter.device()->devicePixelRatioF()));
    if (mark.width() > lockWidth) {
        painter.setFont(CrestFonts::current().caption);
        painter.setPen(theme.secondaryText);
        painter.drawText(mark.adjusted(spacing::unit + markIconSize + markIconGap, 0, 0, 0),
                         Qt::AlignLeft | Qt::AlignVCenter, protectedWord());
    }
}

void paintName(QPainter& painter, const QRect& cell, const QString& name, const QString& note,
               bool isProtected, const CrestTheme& theme) {
    const CrestFonts& fonts = CrestFonts::current();
    const QFontMetrics metrics(fonts.body);
    const QFontMetrics noteMetrics(fonts.caption);
    // Advances are rounded, so a text may be wider by a fraction of a pixel.
    constexpr int rounding = 1;
    const QString pid = note.section(process_words::separator(), 0, 0);
    const int nameWidth = metrics.horizontalAdvance(name) + rounding;
    const int pidWidth = noteMetrics.horizontalAdvance(pid) + rounding;
    const auto parts = ProcessRowDelegate::nameCell(cell, nameWidth, pidWidth, isProtected);
    if (isProtected) {
        paintProtectedMark(painter, parts.mark, theme);
    }
    const int baseline = textBaseline(metrics, cell);
    painter.setFont(fonts.body);
    painter.setPen(theme.text);
    painter.drawText(parts.name.left(), baseline,
                     nameWidth <= parts.name.width()
                         ? name
                         : metrics.elidedText(name, Qt::ElideMiddle, parts.name.width()));
    if (parts.note.width() < pidWidth) {
        return;
    }
    painter.setFont(fonts.caption);
    painter.setPen(theme.secondaryText);
    const QString shown = noteMetrics.elidedText(note, Qt::ElideRight, parts.note.width());
    // A part of the PID would tell nothing.
    painter.drawText(parts.note.left(), baseline, shown.startsWith(pid) ? shown : pid);
}

void paintReviewButton(QPainter& painter, const QRect& cell, const QString& word, bool isHovered,
                       const CrestTheme& theme) {
    const QRectF button = QRectF(buttonRect(cell)).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(isHovered ? theme.secondaryText : theme.hairline);
    painter.setBrush(theme.cardBackground);
    painter.drawRoundedRect(button, 6, 6);
    painter.setFont(CrestFonts::current().caption);
    painter.setPen(theme.text);
    painter.drawText(button, Qt::AlignCenter, word);
}

/// The focus ring surrounds the whole row: each cell paints its part of it.
void paintRowRing(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                  const CrestTheme& theme) {
    const auto* view = qobject_cast<const QAbstractItemView*>(option.widget);
    if (view == nullptr || !view->hasFocus() || view->currentIndex().row() != index.row()) {
        return;
    }
    constexpr int ring = 2;
    const QRect& cell = option.rect;
    painter.fillRect(cell.left(), cell.top(), cell.width(), ring, theme.accentText);
    painter.fillRect(cell.left(), cell.bottom() - ring + 1, cell.width(), ring, theme.accentText);
    if (index.column() == 0) {
        painter.fillRect(cell.left(), cell.top(), ring, cell.height(), theme.accentText);
    }
    if (index.column() == ProcessTableModel::columnTotal - 1) {
        painter.fillRect(cell.right() - ring + 1, cell.top(), ring, cell.height(),
                         theme.accentText);
    }
}

}  // namespace

QRect ProcessRowDelegate::protectedMark(const QRect& cell, int nameWidth) {
    const QFontMetrics metrics(CrestFonts::current().caption);
    const int wordWidth = markIconGap + metrics.horizontalAdvance(protectedWord());
    const int nameRoom = std::min(nameWidth, enoughOfName) + 2 * spacing::unit;
    const int width =
        cell.width() >= nameRoom + lockWidth + wordWidth ? lockWidth + wordWidth : lockWidth;
    const int left = std::min(cell.left() + nameWidth + 2 * spacing::unit, cell.right() - width);
    return {left, cell.center().y() - markHeight / 2 + 1, width, markHeight};
}

ProcessRowDelegate::NameCell ProcessRowDelegate::nameCell(const QRect& cell, int nameWidth,
                                                          int keptNote, bool isProtected) {
    const int gap = spacing::unit;
    const int mark = isProtected ? lockWidth + 2 * gap : 0;
    const bool hasRoom = cell.width() >= std::min(nameWidth, leastOfName) + mark + gap + keptNote;
    const QRect beforeNote = cell.adjusted(0, 0, hasRoom ? -gap - keptNote : 0, 0);
    NameCell parts{beforeNote, {}, {}};
    int end = 0;
    if (isProtected) {
        parts.mark = protectedMark(beforeNote, nameWidth);
        parts.name.setRight(parts.mark.left() - gap - 1);
        end = parts.mark.right() + 1;
    } else {
        parts.name.setWidth(std::min(nameWidth, beforeNote.width()));
        end = parts.name.right() + 1;
    }
    parts.note =
        QRect(end + gap, cell.top(), std::max(0, cell.right() + 1 - end - gap), cell.height());
    return parts;
}

int ProcessRowDelegate::actionWidth() {
    const QFontMetrics metrics(CrestFonts::current().caption);
    return metrics.horizontalAdvance(u"Review"_s) + 2 * buttonPadding + 2 * cellPadding;
}

void ProcessRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const {
    const CrestTheme& theme = CrestTheme::current();
    painter->save();
    painter->setClipRect(option.rect);
    paintRowBackground(*painter, option, index, index.row() == hoveredRow_, theme);

    const QString shown = index.data(Qt::DisplayRole).toString();
    const QRect cell = option.rect.adjusted(cellPadding, 0, -cellPadding, 0);
    if (index.column() == ProcessTableModel::actionColumn) {
        paintReviewButton(*painter, option.rect, shown,
                          option.state.testFlag(QStyle::State_MouseOver), theme);
    } else if (index.column() == ProcessTableModel::processColumn) {
        paintName(*painter, cell, shown, index.data(ProcessTableModel::noteRole).toString(),
                  index.data(ProcessTableModel::isProtectedRole).toBool(), theme);
    } else {
        painter->setFont(CrestFonts::current().body);
        drawFigure(*painter, cell, Qt::AlignRight, shown, theme.text, theme.secondaryText);
    }
    painter->setRenderHint(QPainter::Antialiasing, false);
    painter->setPen(theme.hairline);
    painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    paintRowRing(*painter, option, index, theme);
    painter->restore();
}

QSize ProcessRowDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const {
    const QFontMetrics metrics(CrestFonts::current().body);
    return {metrics.horizontalAdvance(index.data(Qt::DisplayRole).toString()) + 2 * cellPadding,
            rowHeight};
}

bool ProcessRowDelegate::editorEvent(QEvent* event, QAbstractItemModel*,
                                     const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (event->type() != QEvent::MouseButtonRelease ||
        index.column() != ProcessTableModel::actionColumn) {
        return false;
    }
    const auto* mouse = static_cast<QMouseEvent*>(event);
    if (mouse->button() != Qt::LeftButton ||
        !hitRect(option.rect).contains(mouse->position().toPoint())) {
        return false;
    }
    emit reviewRequested(index);
    return true;
}

}  // namespace tallowcrest
