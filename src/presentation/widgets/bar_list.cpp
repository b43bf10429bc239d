#include "presentation/widgets/bar_list.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QPaintEvent>
#include <QPainter>

#include "presentation/widgets/figure_text.h"
#include "presentation/widgets/graph_geometry.h"
#include "presentation/widgets/text_lines.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int rowHeight = 3 * spacing::unit;
constexpr int barHeight = spacing::unit;
constexpr int narrowestLabel = 96;
constexpr int widestLabel = 220;

}  // namespace

BarList::BarList(const QString& label, int rowCount, const QString& valuePattern, QWidget* parent)
    : PaintedFigure(parent), rowCount_(std::max(1, rowCount)), valuePattern_(valuePattern) {
    setAccessibleName(label);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    BarList::measure();
}

void BarList::setRows(std::vector<BarRow> rows) {
    if (rows.size() > static_cast<std::size_t>(rowCount_)) {
        rows.resize(static_cast<std::size_t>(rowCount_));
    }
    if (rows == rows_) {
        return;
    }
    const std::vector<BarRow> before = std::exchange(rows_, std::move(rows));
    if (before.empty() || rows_.empty()) {
        update();
        arrange();
    } else {
        showChanges(before);
    }
    describe();
}

void BarList::showChanges(const std::vector<BarRow>& before) {
    static const BarRow none;
    bool hasNewLabels = before.size() != rows_.size();
    for (std::size_t i = 0; i < std::max(before.size(), rows_.size()); ++i) {
        const BarRow& old = i < before.size() ? before[i] : none;
        const BarRow& now = i < rows_.size() ? rows_[i] : none;
        QRect changed = rowRect(static_cast<int>(i));
        if (old.label != now.label || i >= rows_.size() || i >= before.size()) {
            hasNewLabels = true;
        } else if (old.valueText != now.valueText) {
            changed.setLeft(barLeft());
        } else if (filledWidth(old) != filledWidth(now)) {
            changed.setLeft(barLeft());
            changed.setWidth(barWidth());
        } else {
            continue;
        }
        update(changed);
    }
    if (hasNewLabels) {
        arrange();
    }
}

void BarList::setEmptyText(const QString& text) {
    if (text != emptyText_) {
        emptyText_ = text;
        describe();
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
    return parts.join(u", "_s);
}

void BarList::measure() {
    valueWidth_ = figuresWidth(CrestFonts::current().body, valuePattern_);
}

void BarList::arrange() {
    fittedLabels_.clear();
    for (const BarRow& row : rows_) {
        fittedLabels_.append(
            fittedLines(row.label, CrestFonts::current().body, labelWidth(), 1).value(0));
    }
}

void BarList::paintEvent(QPaintEvent* event) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    painter.fillRect(event->rect(), theme.cardBackground);
    painter.setFont(CrestFonts::current().body);
    if (rows_.empty()) {
        painter.setPen(theme.secondaryText);
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, emptyText_);
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const int top = rowRect(static_cast<int>(i)).top();
        const auto isDue = [event, top](int left, int width) {
            return event->region().intersects(QRect(left, top, width, rowHeight));
        };
        if (isDue(0, labelWidth())) {
            painter.setPen(theme.text);
            painter.drawText(0, textBaseline(painter.fontMetrics(), rowRect(static_cast<int>(i))),
                             fittedLabels_.value(static_cast<qsizetype>(i)));
        }
        if (isDue(width() - valueWidth_, valueWidth_)) {
            drawFigure(painter, QRect(width() - valueWidth_, top, valueWidth_, rowHeight),
                       Qt::AlignRight, rows_[i].valueText, theme.text, theme.secondaryText);
        }
        if (isDue(barLeft(), barWidth())) {
            paintBar(painter, rows_[i], top, theme);
        }
    }
}

void BarList::paintBar(QPainter& painter, const BarRow& row, int rowTop,
                       const CrestTheme& theme) const {
    const QRectF track(barLeft(), rowTop + (rowHeight - barHeight) / 2.0, barWidth(), barHeight);
    const double radius = barHeight / 2.0;
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.track);
    painter.drawRoundedRect(track, radius, radius);
    if (const int filled = filledWidth(row); filled > 0) {
        painter.setBrush(tint_.in(theme));
        painter.drawRoundedRect(QRectF(track.topLeft(), QSizeF(filled, barHeight)), radius, radius);
    }
}

QRect BarList::rowRect(int row) const {
    return {0, row * rowHeight, width(), rowHeight};
}

int BarList::labelWidth() const {
    return std::clamp(width() * 3 / 10, narrowestLabel, widestLabel);
}

int BarList::barLeft() const {
    return labelWidth() + spacing::gap;
}

int BarList::barWidth() const {
    return std::max(0, width() - barLeft() - valueWidth_ - spacing::gap);
}

int BarList::filledWidth(const BarRow& row) const {
    const double share = safeGraphValue(row.fraction * 100) / 100;
    // Never shorter than its round ends, so that a small share stays visible.
    return share > 0 ? std::max(barHeight, static_cast<int>(std::lround(barWidth() * share))) : 0;
}

}  // namespace tallowcrest
