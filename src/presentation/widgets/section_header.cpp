#include "presentation/widgets/section_header.h"

#include <algorithm>

#include <QPainter>

#include "presentation/widgets/icon.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int headerHeight = 40;

}  // namespace

SectionHeader::SectionHeader(const QString& icon, const QString& title, QWidget* parent)
    : CollapseButton(true, parent), icon_(icon) {
    setText(title);
    setAccessibleName(title);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    SectionHeader::describe();
}

void SectionHeader::setNote(const QString& note, const ThemeColor& color) {
    if (note != note_ || color != noteColor_) {
        note_ = note;
        noteColor_ = color;
        describe();
        update();
    }
}

void SectionHeader::describe() {
    const QString action =
        isExpanded() ? u"Hides what this section shows"_s : u"Shows what this section holds"_s;
    setAccessibleDescription(note_.isEmpty() ? action : spokenText(note_) + u". "_s + action);
}

QSize SectionHeader::sizeHint() const {
    return {24 * spacing::unit, headerHeight};
}

QSize SectionHeader::minimumSizeHint() const {
    return {12 * spacing::unit, headerHeight};
}

void SectionHeader::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintGround(painter);
    int left = spacing::cardPadding;
    paintChevron(painter, left, height() / 2);
    left += chevronRoom;
    if (!icon_.isEmpty()) {
        constexpr int size = spacing::iconRegular;
        painter.drawPixmap(left, (height() - size) / 2,
                           tintedIcon(icon_, theme.secondaryText, size, devicePixelRatioF()));
        left += size + spacing::unit;
    }

    int right = width() - spacing::cardPadding;
    if (!note_.isEmpty()) {
        painter.setFont(CrestFonts::current().caption);
        painter.setPen(noteColor_.in(theme));
        const int noteWidth = std::min(painter.fontMetrics().horizontalAdvance(note_) + 1,
                                       std::max(0, (right - left) / 2));
        painter.drawText(QRect(right - noteWidth, 0, noteWidth, height()),
                         Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine,
                         painter.fontMetrics().elidedText(note_, Qt::ElideRight, noteWidth));
        right -= noteWidth + spacing::gap;
    }
    painter.setFont(CrestFonts::current().heading);
    painter.setPen(theme.text);
    painter.drawText(QRect(left, 0, right - left, height()),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(text(), Qt::ElideRight, right - left));
}

}  // namespace tallowcrest
