#include "presentation/screens/optimize/selected_offender.h"

#include <algorithm>
#include <cmath>

#include <QLocale>

#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest::selected_offender {
namespace {

using dashboard_text::text;

QString decimal(double value, int places) {
    return QLocale().toString(std::isfinite(value) ? value : 0.0, 'f', places);
}

QString cpuPercent(double percent) {
    return decimal(percent, 1) + u'%';
}

}  // namespace

QString hint() {
    return u"Select an app or process to see why it matters."_s;
}

QString heading(std::string_view name) {
    const QString title = u"Selected Offender"_s;
    return name.empty() ? title : title + u": "_s + text(name);
}

QString sentence(const ProcessSample& process, bool isProtected) {
    // Joined and not filled into a pattern: a name may hold anything, a placeholder as well.
    return text(process.displayName()) + u" is using "_s + cpuPercent(process.cpu) +
           u" CPU and "_s + wholeMegabytes(process.rssMB) + u" memory. "_s +
           (isProtected ? u"It is protected from quit actions."_s
                        : u"Review before quitting; unsaved work may be lost if the "
                          "app does not exit cleanly."_s);
}

GroupCard groupCard(const std::optional<std::string>& group, std::span<const AppImpact> groups) {
    const QString noSummary = u"No group summary"_s;
    if (!group || group->empty()) {
        return {noSummary, {}};
    }
    const auto found = std::find_if(groups.begin(), groups.end(),
                                    [&](const AppImpact& each) { return each.name == *group; });
    if (found == groups.end()) {
        return {text(*group), noSummary};
    }
    const QString count =
        found->processCount == 1
            ? u"1 process"_s
            : QLocale().toString(static_cast<qlonglong>(found->processCount)) + u" processes"_s;
    return {text(*group), u"%1 · %2 CPU"_s.arg(count, cpuPercent(found->totalCPU))};
}

QString risk(bool isProtected) {
    return isProtected ? u"Protected"_s : u"Manual"_s;
}

QString wholeMegabytes(double megabytes) {
    return decimal(megabytes, 0) + u" MB"_s;
}

}  // namespace tallowcrest::selected_offender
