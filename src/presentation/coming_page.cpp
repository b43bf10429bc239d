#include "presentation/coming_page.h"

#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/card.h"
#include "presentation/dashboard_text.h"
#include "presentation/elided_label.h"
#include "presentation/theme.h"

namespace tallowcrest {
namespace {

QString comingLine(AppRoute route) {
    switch (route) {
        case AppRoute::optimize:
            return QStringLiteral(
                "Here you will review one process or app group and choose what to do about it.");
        case AppRoute::optimizationSuggestions:
            return QStringLiteral(
                "Here you will find the next steps for CPU, memory and disk, most useful first.");
        case AppRoute::aiAdvisor:
            return QStringLiteral(
                "Here you will read explained recommendations and review proposed actions.");
        case AppRoute::chat:
            return QStringLiteral("Here you will ask questions about the current diagnostics.");
        case AppRoute::remoteMacs:
            return QStringLiteral("Here you will see the other machines of your tailnet.");
        case AppRoute::history:
            return QStringLiteral("Here you will find past load, warnings and actions.");
        case AppRoute::settings:
            return QStringLiteral("Here you will choose thresholds and what may run by itself.");
        case AppRoute::overview:
        case AppRoute::load:
            break;
    }
    return {};
}

}  // namespace

ComingPage::ComingPage(SystemMonitor& monitor, AppRoute route, QWidget* parent)
    : Screen(parent), monitor_(monitor), route_(route) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding, spacing::pagePadding);
    auto* card = new Card(this);
    card->setObjectName(QStringLiteral("coming.") + dashboard_text::text(rawValue(route)));
    card->setAccessibleName(dashboard_text::text(title(route)));
    const auto addLine = [card](const QString& name, const ThemeColor& color) {
        auto* line = new ElidedLabel(QString(), &CrestFonts::body, color, card);
        line->setObjectName(card->objectName() + name);
        line->setLines(1, 3);
        line->setGround(&CrestTheme::cardBackground);
        card->contentLayout()->addWidget(line);
        return line;
    };
    if (route == AppRoute::optimize) {
        step_ = addLine(QStringLiteral(".step"), &CrestTheme::text);
    }
    line_ = addLine(QStringLiteral(".line"), &CrestTheme::secondaryText);
    layout->addWidget(card);
    layout->addStretch(1);
}

void ComingPage::refresh() {
    const bool hasSample = monitor_.sample().snapshot().has_value();
    line_->setText(hasSample ? comingLine(route_) : QStringLiteral("Sampling this Mac..."));
    if (step_ != nullptr) {
        step_->setText(dashboard_text::text(monitor_.review().optimizeStep()));
        step_->setVisible(hasSample);
    }
}

}  // namespace tallowcrest
