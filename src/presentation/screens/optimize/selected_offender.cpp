#include "presentation/screens/optimize/selected_offender.h"

#include <algorithm>
#include <cmath>

#include <QLocale>

#include "presentation/words/dashboard_text.h"

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
    return QStringLiteral("Select an app or process to see why it matters.");
}

QString heading(std::string_view name) {
    const QString title = QStringLiteral("Selected Offender");
    return name.empty() ? title : title + QStringLiteral(": ") + text(name);
}

QString sentence(const ProcessSample& process, bool isProtected) {
    // Joined and not filled into a pattern: a name may hold anything, a placeholder as well.
    return text(process.displayName()) + QStringLiteral(" is using ") + cpuPercent(process.cpu) +
           QStringLiteral(" CPU and ") + wholeMegabytes(process.rssMB) +
           QStringLiteral(" memory. ") +
           (isProtected ? QStringLiteral("It is protected from quit actions.")
                        : QStringLiteral("Review before quitting; unsaved work may be lost if the "
                                         "app does not exit cleanly."));
}

GroupCard groupCard(const std::optional<std::string>& group, std::span<const AppImpact> groups) {
    const QString noSummary = QStringLiteral("No group summary");
    if (!group || group->empty()) {
        return {noSummary, {}};
    }
    const auto found = std::find_if(groups.begin(), groups.end(),
                                    [&](const AppImpact& each) { return each.name == *group; });
    if (found == groups.end()) {
        return {text(*group), noSummary};
    }
    const QString count = found->processCount == 1
                              ? QStringLiteral("1 process")
                              : QLocale().toString(static_cast<qlonglong>(found->processCount)) +
                                    QStringLiteral(" processes");
    return {text(*group), QStringLiteral("%1 · %2 CPU").arg(count, cpuPercent(found->totalCPU))};
}

QString risk(bool isProtected) {
    return isProtected ? QStringLiteral("Protected") : QStringLiteral("Manual");
}

QString wholeMegabytes(double megabytes) {
    return decimal(megabytes, 0) + QStringLiteral(" MB");
}

}  // namespace tallowcrest::selected_offender
