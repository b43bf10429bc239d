// What a `StableLineGraph` says about its points: at the cursor, in tool tips and to assistive
// technology.

#include <algorithm>
#include <cmath>
#include <iterator>

#include <QFocusEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QToolTip>

#include "presentation/widgets/announcer.h"
#include "presentation/widgets/crest_style.h"
#include "presentation/widgets/graph_geometry.h"
#include "presentation/widgets/stable_line_graph.h"
#include "presentation/widgets/text_lines.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// How far from a mark the pointer may be for its tool tip.
constexpr double markReach = 6;
/// Where the samples are rarer than the marks are meant for, the description stays short.
constexpr std::ptrdiff_t mostSpokenGaps = 3;

}  // namespace

bool StableLineGraph::isMeasured(const StableGraphSeries& series, std::size_t point) {
    return point < series.values.size() && !std::ranges::binary_search(series.missing, point);
}

std::size_t StableLineGraph::pointCount() const {
    std::size_t count = 0;
    for (const StableGraphSeries& series : series_) {
        count = std::max(count, series.values.size());
    }
    return count;
}

QString StableLineGraph::timeText(std::size_t point) const {
    const std::vector<double>& seconds = times_.seconds;
    return point < seconds.size() ? timeFormats_.inSeconds(seconds[point], seconds.back())
                                  : QString();
}

QString StableLineGraph::gapText(std::size_t point) const {
    return u"Not measured from %1 to %2"_s.arg(timeText(point - 1), timeText(point));
}

QString StableLineGraph::eventText(const GraphEventLabel& label) const {
    const double now = times_.seconds.empty() ? label.seconds : times_.seconds.back();
    return u"%1, %2: %3"_s.arg(label.title, timeFormats_.inSeconds(label.seconds, now),
                               label.message);
}

QStringList StableLineGraph::marksAt(double x, double reach) const {
    const double width = canvasRect().width();
    QStringList texts;
    for (std::size_t i = 0; i < std::min(eventLabels_.size(), eventFractions_.size()); ++i) {
        // False for a fraction that is not a number.
        if (std::abs(eventFractions_[i] * width - x) <= reach) {
            texts.append(eventText(eventLabels_[i]));
        }
    }
    for (const std::size_t point : times_.gaps) {
        if (std::abs(graphGapX(point, pointCount(), width) - x) <= reach) {
            texts.append(gapText(point));
        }
    }
    return texts;
}

QString StableLineGraph::accessibleValue() const {
    QStringList parts;
    for (const StableGraphSeries& series : series_) {
        if (const auto text =
                graphSeriesText(series.id.toStdString(), series.values, series.missing)) {
            parts.append(QString::fromStdString(*text));
        }
    }
    return parts.join(u", "_s);
}

QString StableLineGraph::cursorText(std::size_t point) const {
    QStringList parts;
    for (const StableGraphSeries& series : series_) {
        if (isMeasured(series, point)) {
            parts.append(QString::fromStdString(
                graphValueText(series.id.toStdString(), series.values[point])));
        }
    }
    QString text = parts.join(u", "_s);
    if (const QString time = timeText(point); !time.isEmpty()) {
        text = time + u": "_s + text;
    }
    // The marks that are no nearer to another point; a gap belongs to both of its neighbours.
    constexpr double tolerance = 0.01;
    const double width = canvasRect().width();
    const double half = graphX(1, pointCount(), width) / 2;
    const double x = graphX(point, pointCount(), width);
    return (QStringList(text) + marksAt(x, half + tolerance)).join(u". "_s);
}

void StableLineGraph::describeAll() {
    if (cursor_) {
        setSpokenDescription(*this, cursorText(*cursor_));
        return;
    }
    std::vector<std::pair<double, double>> gaps;
    const auto count = std::min(std::ssize(times_.gaps), mostSpokenGaps);
    for (auto point = times_.gaps.end() - count; point != times_.gaps.end(); ++point) {
        gaps.emplace_back(times_.seconds[*point - 1], times_.seconds[*point]);
    }
    if (gaps != spokenGaps_) {
        spokenGaps_ = gaps;
        gapTexts_.clear();
        for (auto point = times_.gaps.end() - count; point != times_.gaps.end(); ++point) {
            gapTexts_ += u". "_s + gapText(*point);
        }
    }
    const QString value = accessibleValue();
    setSpokenDescription(*this, value.isEmpty() ? u"Nothing measured yet"_s : value + gapTexts_);
}

void StableLineGraph::moveCursor(std::optional<std::size_t> point) {
    if (point != cursor_) {
        cursor_ = point;
        describeAll();
        update(canvasPixels());
    }
}

void StableLineGraph::followPointer(std::optional<double> x) {
    const bool isFollowing = pointerX_.has_value();
    pointerX_ = x;
    const QRectF canvas = canvasRect();
    if (x) {
        moveCursor(nearestGraphPoint(*x - canvas.left(), pointCount(), canvas.width()));
    } else if (isFollowing) {
        moveCursor(std::nullopt);
    }
}

std::optional<std::size_t> StableLineGraph::cursorAmong(const GraphTimes& times,
                                                        std::size_t count) const {
    if (!cursor_ || count == 0) {
        return std::nullopt;
    }
    if (pointerX_) {
        return nearestGraphPoint(*pointerX_ - canvasRect().left(), count, canvasRect().width());
    }
    if (*cursor_ < times_.seconds.size() && !times.seconds.empty()) {
        // Stays at its point, or at the first one when that has left the graph.
        const auto point =
            std::find(times.seconds.rbegin(), times.seconds.rend(), times_.seconds[*cursor_]);
        return point == times.seconds.rend()
                   ? 0
                   : static_cast<std::size_t>(times.seconds.rend() - point) - 1;
    }
    return std::min(*cursor_, count - 1);
}

bool StableLineGraph::usesKey(const QKeyEvent& event) const {
    if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) {
        return false;
    }
    switch (event.key()) {
        case Qt::Key_Left:
        case Qt::Key_Right:
        case Qt::Key_Home:
        case Qt::Key_End:
            return pointCount() > 0;
        case Qt::Key_Escape:
            return cursor_.has_value();
        default:
            return false;
    }
}

QStringList StableLineGraph::legendNotes() const {
    QStringList notes;
    for (const StableGraphSeries& each : series_) {
        if (!each.note.isEmpty()) {
            notes.append(each.id + u": "_s + each.note);
        }
    }
    return notes;
}

bool StableLineGraph::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && usesKey(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const bool isOnCanvas = canvasPixels().contains(help->pos());
        const QStringList words = isOnCanvas
                                      ? marksAt(help->pos().x() - canvasRect().left(), markReach)
                                  : help->pos().y() < captionHeight_ ? legendNotes()
                                                                     : QStringList();
        if (words.isEmpty()) {
            QToolTip::hideText();
            event->ignore();
        } else {
            QToolTip::showText(help->globalPos(),
                               toolTipText(words.join(isOnCanvas ? u" · "_s : u"\n"_s)), this);
        }
        return true;
    }
    return PaintedFigure::event(event);
}

void StableLineGraph::keyPressEvent(QKeyEvent* event) {
    if (!usesKey(*event)) {
        PaintedFigure::keyPressEvent(event);
        return;
    }
    pointerX_.reset();
    const std::size_t last = std::max<std::size_t>(pointCount(), 1) - 1;
    switch (event->key()) {
        case Qt::Key_Left:
            moveCursor(cursor_ ? *cursor_ - std::min<std::size_t>(*cursor_, 1) : last);
            break;
        case Qt::Key_Right:
            moveCursor(cursor_ ? std::min(*cursor_ + 1, last) : last);
            break;
        case Qt::Key_Home:
            moveCursor(0);
            break;
        case Qt::Key_End:
            moveCursor(last);
            break;
        default:
            moveCursor(std::nullopt);
    }
    if (cursor_) {
        announce(*this, cursorText(*cursor_));
    }
}

void StableLineGraph::mouseMoveEvent(QMouseEvent* event) {
    const QPointF place = event->position();
    followPointer(canvasPixels().contains(place.toPoint()) ? std::optional(place.x())
                                                           : std::nullopt);
}

void StableLineGraph::leaveEvent(QEvent*) {
    followPointer(std::nullopt);
}

void StableLineGraph::focusInEvent(QFocusEvent* event) {
    hasRing_ = showsFocusRing(event->reason(), hasRing_);
    PaintedFigure::focusInEvent(event);
    update(canvasPixels());
}

void StableLineGraph::focusOutEvent(QFocusEvent* event) {
    PaintedFigure::focusOutEvent(event);
    if (!pointerX_) {
        moveCursor(std::nullopt);
    }
    update(canvasPixels());
}

}  // namespace tallowcrest
