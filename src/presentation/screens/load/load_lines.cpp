#include "presentation/screens/load/load_lines.h"

#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

QString sense(const ProcessOrder& order) {
    if (order.column == ProcessColumn::process) {
        return order.isReversed ? u"Z to A"_s : u"A to Z"_s;
    }
    return order.isReversed ? u"lowest first"_s : u"highest first"_s;
}

}  // namespace

LoadLines loadLines(const LoadFacts& facts) {
    LoadLines lines;
    if (!facts.sampledAt) {
        lines.status = lines.emptyDetail = u"Sampling this Mac..."_s;
    } else {
        lines.status =
            dashboard_text::sortStatus(orderName(facts.order), facts.shownRows, *facts.sampledAt);
        lines.emptyDetail = facts.hasProcesses
                                ? u"No process matches the filter. Clear it to see all."_s
                                : u"No process could be read in the last sample."_s;
    }
    lines.description = facts.shownRows == 0
                            ? u"Select Process. "_s + lines.emptyDetail
                            : u"Processes by %1. Return on a row selects it for review."_s.arg(
                                  facts.order ? title(facts.order->column) : u"impact"_s);
    return lines;
}

std::vector<QString> statusPatterns(Date day) {
    // One of them is in an hour of two digits, also where the hours are counted to twelve.
    Date longest = day;
    for (const double hours : {3.0, 6.0, 9.0}) {
        const Date other{day.secondsSinceReference + hours * 3600.0};
        if (dashboard_text::timeText(other).size() > dashboard_text::timeText(longest).size()) {
            longest = other;
        }
    }
    std::vector<QString> patterns;
    const auto add = [&](const std::optional<ProcessOrder>& order) {
        patterns.push_back(dashboard_text::sortStatus(orderName(order), 9999, longest));
    };
    add(std::nullopt);
    for (const ProcessColumn column : {ProcessColumn::process, ProcessColumn::cpu,
                                       ProcessColumn::memory, ProcessColumn::memoryPercent}) {
        add(ProcessOrder{column, false});
    }
    return patterns;
}

QString foundWords(std::int64_t shown, std::int64_t all) {
    return shown == all ? dashboard_text::processes(all)
                        : dashboard_text::count(shown) + u" of "_s + dashboard_text::processes(all);
}

QString orderWords(const std::optional<ProcessOrder>& order) {
    return order ? columnTitle(order, order->column).spoken : u"Impact, highest first"_s;
}

QString impactOrderEffect() {
    return u"Returns to the order by CPU and memory impact"_s;
}

ColumnTitle columnTitle(const std::optional<ProcessOrder>& order, ProcessColumn column) {
    const QString name = title(column);
    const QString arrow = orderArrow(order, column);
    const std::optional<ProcessOrder> next = orderAfterClick(order, column);
    ColumnTitle shown{.text = name, .spoken = name};
    if (!arrow.isEmpty()) {
        shown = {.text = name + u' ' + arrow,
                 .spoken = name + u", "_s + sense(*order),
                 .isOrdered = true};
    }
    shown.effect = next ? u"Orders by %1, %2"_s.arg(name, sense(*next)) : impactOrderEffect();
    return shown;
}

}  // namespace tallowcrest
