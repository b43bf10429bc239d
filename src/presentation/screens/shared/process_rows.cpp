#include "presentation/screens/shared/process_rows.h"

#include <cstddef>
#include <utility>

#include <QMouseEvent>

#include "core/clock.h"
#include "presentation/screens/shared/process_table_model.h"
#include "presentation/screens/shared/process_table_view.h"
#include "presentation/words/process_order.h"

namespace tallowcrest {
namespace {

/// How long the rows keep their places after the last movement of the pointer over them.
constexpr double holdingSeconds = 1.5;
/// How long a press is ignored: nobody sees a new row below the pointer and presses on it sooner.
constexpr double reactionSeconds = 0.3;

}  // namespace

ProcessRows::ProcessRows(ProcessTableView& table, ProcessTableModel& model, const Clock& clock,
                         QObject* parent)
    : QObject(parent), table_(table), model_(model), clock_(clock) {
    connect(&table_, &ProcessTableView::touched, this, [this] { touchedAt_ = clock_.now(); });
    connect(&table_, &ProcessTableView::pointerLeft, this, &ProcessRows::release);
    connect(&table_, &ProcessTableView::viewMoved, this, &ProcessRows::viewChanged);
    table_.viewport()->installEventFilter(this);
}

void ProcessRows::show(std::vector<ProcessSample> rows, bool isSameList) {
    if (isSameList && isTouched()) {
        setRows(rowsInPlace(model_.rows(), rows));
        held_ = std::move(rows);
    } else {
        held_.reset();
        setRows(std::move(rows));
    }
}

void ProcessRows::setRows(std::vector<ProcessSample> rows) {
    if (rows == model_.rows()) {
        return;
    }
    const auto before = pidBelowPointer();
    // When the process of the current row ends, the view must not scroll to the next one.
    table_.setAutoScroll(false);
    model_.setRows(std::move(rows));
    table_.setAutoScroll(true);
    if (const auto after = pidBelowPointer(); after && after != before) {
        replacedAt_ = clock_.now();
    }
}

void ProcessRows::release() {
    touchedAt_.reset();
    if (auto rows = std::exchange(held_, std::nullopt)) {
        setRows(*std::move(rows));
        emit viewChanged();
    }
}

std::vector<const ProcessSample*> ProcessRows::inView() const {
    std::vector<const ProcessSample*> rows;
    const auto [first, last] = table_.rowsInView();
    for (int row = first; row <= last; ++row) {
        rows.push_back(&model_.rows().at(static_cast<std::size_t>(row)));
    }
    return rows;
}

bool ProcessRows::isTouched() const {
    return table_.isPressed() || isWithin(touchedAt_, holdingSeconds);
}

std::optional<std::int64_t> ProcessRows::pidBelowPointer() const {
    const int row = table_.rowBelowPointer();
    return row >= 0 && row < model_.rowCount()
               ? std::optional(model_.rows().at(static_cast<std::size_t>(row)).pid)
               : std::nullopt;
}

bool ProcessRows::isWithin(const std::optional<Date>& start, double seconds) const {
    const double passed = start ? secondsBetween(*start, clock_.now()) : -1.0;
    return passed >= 0.0 && passed < seconds;
}

bool ProcessRows::eventFilter(QObject* object, QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            isPressIgnored_ = isWithin(replacedAt_, reactionSeconds);
            if (isPressIgnored_) {
                return true;
            }
            break;
        case QEvent::MouseMove:
            isPressIgnored_ =
                isPressIgnored_ && static_cast<QMouseEvent*>(event)->buttons() != Qt::NoButton;
            if (isPressIgnored_) {
                return true;
            }
            break;
        case QEvent::MouseButtonRelease:
            if (std::exchange(isPressIgnored_, false)) {
                return true;
            }
            break;
        case QEvent::Hide:
            release();
            break;
        default:
            break;
    }
    return QObject::eventFilter(object, event);
}

}  // namespace tallowcrest
