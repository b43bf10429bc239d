#include "presentation/words/process_order.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

bool isNumber(ProcessColumn column) {
    return column != ProcessColumn::process;
}

void orderByName(std::vector<ProcessSample>& rows) {
    struct Named {
        QString name;
        ProcessSample row;
    };
    std::vector<Named> named;
    named.reserve(rows.size());
    for (ProcessSample& row : rows) {
        QString name = dashboard_text::text(row.displayName()).toCaseFolded();
        // Otherwise the kernel's threads, named in brackets, would be most of the list's start.
        name.remove(u'[');
        named.push_back({std::move(name), std::move(row)});
    }
    std::stable_sort(named.begin(), named.end(), [](const Named& a, const Named& b) {
        return std::tie(a.name, a.row.pid) < std::tie(b.name, b.row.pid);
    });
    std::transform(named.begin(), named.end(), rows.begin(),
                   [](Named& each) { return std::move(each.row); });
}

double ProcessSample::*figureOf(ProcessColumn column) {
    switch (column) {
        case ProcessColumn::memory:
            return &ProcessSample::rssMB;
        case ProcessColumn::memoryPercent:
            return &ProcessSample::memoryPercent;
        default:
            return &ProcessSample::cpu;
    }
}

}  // namespace

QString title(ProcessColumn column) {
    switch (column) {
        case ProcessColumn::process:
            return u"Process"_s;
        case ProcessColumn::cpu:
            return u"CPU"_s;
        case ProcessColumn::memory:
            return u"Memory"_s;
        case ProcessColumn::memoryPercent:
            return u"Mem %"_s;
    }
    return {};
}

std::optional<ProcessOrder> orderAfterClick(const std::optional<ProcessOrder>& order,
                                            ProcessColumn clicked) {
    if (!order || order->column != clicked) {
        return ProcessOrder{clicked, false};
    }
    return order->isReversed ? std::nullopt : std::optional(ProcessOrder{clicked, true});
}

QString orderArrow(const std::optional<ProcessOrder>& order, ProcessColumn column) {
    if (!order || order->column != column) {
        return {};
    }
    return isNumber(column) != order->isReversed ? u"↓"_s : u"↑"_s;
}

QString orderName(const std::optional<ProcessOrder>& order) {
    return order ? title(order->column) + u' ' + orderArrow(order, order->column) : u"Impact ↓"_s;
}

std::vector<ProcessSample> orderedProcesses(std::vector<ProcessSample> rows,
                                            const std::optional<ProcessOrder>& order) {
    if (!order) {
        return rows;
    }
    if (order->column == ProcessColumn::process) {
        orderByName(rows);
        if (order->isReversed) {
            std::reverse(rows.begin(), rows.end());
        }
        return rows;
    }
    const auto figure = figureOf(order->column);
    std::stable_sort(rows.begin(), rows.end(),
                     [figure, &order](const ProcessSample& a, const ProcessSample& b) {
                         return order->isReversed ? a.*figure < b.*figure : a.*figure > b.*figure;
                     });
    return rows;
}

std::vector<ProcessSample> rowsInPlace(std::vector<ProcessSample> shown,
                                       const std::vector<ProcessSample>& fresh) {
    std::unordered_map<std::int64_t, std::size_t> places;
    places.reserve(shown.size());
    for (std::size_t i = 0; i < shown.size(); ++i) {
        places.emplace(shown[i].pid, i);
    }
    for (const ProcessSample& row : fresh) {
        const auto place = places.find(row.pid);
        if (place == places.end()) {
            shown.push_back(row);
        } else {
            shown[place->second] = row;
        }
    }
    return shown;
}

}  // namespace tallowcrest
