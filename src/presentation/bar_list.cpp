#include "presentation/bar_list.h"

#include <algorithm>
#include <utility>

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>

#include "presentation/graph_geometry.h"
#include "presentation/text_lines.h"

namespace tallowcrest {
namespace {

constexpr int rowHeight = 3 * spacing::unit;
constexpr int barHeight = spacing::unit;
constexpr int narrowestLabel = 96;
constexpr int widestLabel = 220;

}  // namespace

BarList::BarList(const QString& label, int rowCount, const QString& valuePattern, QWidget* parent)
    : QWidget(parent), rowCount_(std::max(1, rowCount)), valuePattern_(valuePattern) {
    installAccessibleFigures();
    setAccessibleName(label);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    valueWidth_ = figuresWidth(CrestFonts::current().body, valuePattern_);
}

void BarList::setRows(std::vector<BarRow> rows) {
    if (rows.size() > static_cast<std::size_t>(rowCount_)) {
        rows.resize(static_cast<std::size_t>(rowCount_));
    }
    if (rows == rows_) {
        return;
    }
    if (rows.empty() || rows_.empty()) {
        update();
    } else {
        for (int row = 0; row < rowCount_; ++row) {
            const auto index = static_cast<std::size_t>(row);
            const bool had = index < rows_.size();
            const bool has = index < rows.size();
            if (had != has || (has && rows[index] != rows_[index])) {
                update(rowRect(row));
            }
        }
    }
    rows_ = std::move(rows);
    fitLabels();
    setAccessibleDescription(accessibleValue());
}

void BarList::setEmptyText(const QString& text) {
    if (text != emptyText_) {
        emptyText_ = text;
        setAccessibleDescription(accessibleValue());
        if (rows_.empty()) {
            update();
        }
    }
}

void BarList::setTint(const ThemeColor& tint) {
    if (tint != tint_) {
        tint_ = tint;
        update();
    }
}

QSize BarList::sizeHint() const {
    return {400, rowHeight * rowCount_};
}

QSize BarList::minimumSizeHint() const {
    return {narrowestLabel + valueWidth_ + 8 * spacing::unit, rowHeight * rowCount_};
}

QString BarList::accessibleValue() const {
    if (rows_.empty()) {
        return emptyText_;
    }
    QStringList parts;
    for (const BarRow& row : rows_) {
        parts.append(row.label + u' ' + row.valueText);
    }
    return parts.join(QStringLiteral(", "));
}

void BarList::changeEvent(QEvent* event) {
    if (event->type() == QEvent::FontChange) {
        valueWidth_ = figuresWidth(CrestFonts::current().body, valuePattern_);
        fitLabels();
        updateGeometry();
    }
    QWidget::changeEvent(event);
}

void BarList::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    fitLabels();
}

void BarList::paintEvent(QPaintEvent* event) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    if (rows_.empty()) {
        painter.setFont(CrestFonts::current().body);
        painter.setPen(theme.secondaryText);
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, emptyText_);
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(CrestFonts::current().body);
    const int barLeft = labelWidth() + spacing::gap;
    const int barWidth = std::max(0, width() - barLeft - valueWidth_ - spacing::gap);
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const QRect row = rowRect(static_cast<int>(i));
        if (!event->rect().intersects(row)) {
            continue;
        }
        painter.setPen(theme.text);
        painter.drawText(QRect(0, row.top(), labelWidth(), rowHeight),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                         fittedLabels_.value(static_cast<qsizetype>(i)));
        painter.setPen(theme.secondaryText);
        painter.drawText(QRect(width() - valueWidth_, row.top(), valueWidth_, rowHeight),
                         Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine,
                         rows_[i].valueText);

        const double top = row.top() + (rowHeight - barHeight) / 2.0;
        const double radius = barHeight / 2.0;
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme.track);
        painter.drawRoundedRect(QRectF(barLeft, top, barWidth, barHeight), radius, radius);
        const double share = safeGraphValue(rows_[i].fraction * 100) / 100;
        if (share > 0) {
            // Never shorter than its own round ends, so that a small share can still be seen.
            const double filled = std::max<double>(barHeight, barWidth * share);
            painter.setBrush(tint_.in(theme));
            painter.drawRoundedRect(QRectF(barLeft, top, filled, barHeight), radius, radius);
        }
    }
}

QRect BarList::rowRect(int row) const {
    return {0, row * rowHeight, width(), rowHeight};
}

int BarList::labelWidth() const {
    return std::clamp(width() * 3 / 10, narrowestLabel, widestLabel);
}

void BarList::fitLabels() {
    fittedLabels_.clear();
    for (const BarRow& row : rows_) {
        fittedLabels_.append(
            fittedLines(row.label, CrestFonts::current().body, labelWidth(), 1).value(0));
    }
}

}  // namespace tallowcrest
