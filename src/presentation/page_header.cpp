#include "presentation/page_header.h"

#include <vector>

#include <QHBoxLayout>
#include <QPushButton>
#include <QResizeEvent>
#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/controls.h"
#include "presentation/dashboard_text.h"
#include "presentation/elided_label.h"
#include "presentation/icon.h"
#include "presentation/theme.h"

namespace tallowcrest {
namespace {

/// What a button's icon is called, for when there is room for it again.
constexpr const char* iconProperty = "tallowcrest.icon";

QString identifierOn(AppRoute route, const char* action) {
    return dashboard_text::text(rawValue(route)) + u'.' + QString::fromLatin1(action);
}

}  // namespace

PageHeader::PageHeader(SystemMonitor& monitor, QWidget* parent)
    : QWidget(parent), monitor_(monitor) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(spacing::pagePadding, spacing::gap, spacing::pagePadding,
                               spacing::unit);
    layout->setSpacing(2);

    auto* row = new QHBoxLayout;
    row->setSpacing(spacing::unit);
    title_ = new ElidedLabel(QString(), &CrestFonts::title, &CrestTheme::text, this);
    title_->setObjectName(QStringLiteral("page.title"));
    subtitle_ = new ElidedLabel(QString(), &CrestFonts::body, &CrestTheme::secondaryText, this);
    subtitle_->setObjectName(QStringLiteral("page.subtitle"));
    row->addWidget(title_, 1);

    actions_ = new QHBoxLayout;
    actions_->setSpacing(spacing::unit);
    row->addLayout(actions_);
    refresh_ =
        makeButton(QStringLiteral("Refresh"), QStringLiteral("arrow.clockwise"),
                   QStringLiteral("page.refresh"), QStringLiteral("Takes a new sample now"), this);
    refresh_->setProperty(iconProperty, QStringLiteral("arrow.clockwise"));
    connect(refresh_, &QPushButton::clicked, this, [this] { monitor_.refresh(); });
    row->addWidget(refresh_);
    layout->addLayout(row);
    // The width of the page to itself: no route's subtitle needs a second line.
    layout->addWidget(subtitle_);
}

void PageHeader::setRoute(AppRoute route) {
    title_->setText(dashboard_text::text(title(route)));
    subtitle_->setText(dashboard_text::text(subtitle(route)));
    while (const QLayoutItem* item = actions_->takeAt(0)) {
        // Deleted later, because the click that changed the route may be its own.
        item->widget()->hide();
        item->widget()->deleteLater();
        delete item;
    }
    addRouteActions(route);
    orderActions();
    fold();
}

void PageHeader::fold() {
    std::vector<QPushButton*> buttons{refresh_};
    for (int i = 0; i < actions_->count(); ++i) {
        buttons.push_back(qobject_cast<QPushButton*>(actions_->itemAt(i)->widget()));
    }
    const auto showIcons = [&buttons](bool areShown) {
        for (QPushButton* button : buttons) {
            button->setIcon(areShown ? themedIcon(button->property(iconProperty).toString())
                                     : QIcon());
        }
    };
    showIcons(true);
    int wanted = 2 * spacing::pagePadding + title_->sizeHint().width();
    for (const QPushButton* button : buttons) {
        wanted += spacing::unit + button->sizeHint().width();
    }
    if (wanted > width()) {
        showIcons(false);
    }
}

void PageHeader::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (event->size().width() != event->oldSize().width()) {
        fold();
    }
}

void PageHeader::orderActions() {
    // The order that the eye sees; new widgets would else come behind the whole page.
    QWidget* before = refresh_;
    for (int i = 0; i < actions_->count(); ++i) {
        QWidget* action = actions_->itemAt(i)->widget();
        setTabOrder(before, action);
        before = action;
    }
    setTabOrder(before, refresh_);
    // Assistive technology goes by the order of the children.
    refresh_->raise();
}

QPushButton* PageHeader::addAction(const QString& title, const QString& icon,
                                   const QString& identifier, const QString& description) {
    QPushButton* button = makeButton(title, icon, identifier, description, this);
    button->setProperty(iconProperty, icon);
    actions_->addWidget(button);
    return button;
}

void PageHeader::addRouteActions(AppRoute route) {
    if (route == AppRoute::overview) {
        connect(addAction(QStringLiteral("Review Cleanup"), QStringLiteral("wand.and.stars"),
                          QStringLiteral("overview.review-cleanup"),
                          QStringLiteral("Goes to Optimize")),
                &QPushButton::clicked, this,
                [this] { monitor_.navigation().setSelectedRoute(AppRoute::optimize); });
    } else if (route == AppRoute::aiAdvisor) {
        connect(addAction(QStringLiteral("Open Chat"), QStringLiteral("message"),
                          identifierOn(route, "open-chat"), QStringLiteral("Goes to Chat")),
                &QPushButton::clicked, this,
                [this] { monitor_.navigation().setSelectedRoute(AppRoute::chat); });
    } else if (route == AppRoute::settings) {
        connect(addAction(QStringLiteral("Open Settings Sheet"), QStringLiteral("gearshape"),
                          identifierOn(route, "open-sheet"),
                          QStringLiteral("Opens the settings sheet")),
                &QPushButton::clicked, this,
                [this] { monitor_.navigation().setShowSettings(true); });
    } else if (route == AppRoute::load || route == AppRoute::optimize) {
        addSelectTop(route);
        if (route == AppRoute::optimize) {
            connect(addAction(QStringLiteral("Top App"), QStringLiteral("chart.bar.xaxis"),
                              identifierOn(route, "top-app"),
                              QStringLiteral("Selects the heaviest process of the heaviest app")),
                    &QPushButton::clicked, this, [this] {
                        monitor_.review().selectTopApp();
                        const auto& snapshot = monitor_.sample().snapshot();
                        if (snapshot && !snapshot->appImpacts.empty()) {
                            tellSelection(snapshot->appImpacts.front().topPID);
                        }
                    });
            connect(addAction(QStringLiteral("Purge"), QStringLiteral("memorychip"),
                              identifierOn(route, "purge"),
                              QStringLiteral("Asks before it clears the file caches")),
                    &QPushButton::clicked, this,
                    [this] { monitor_.localActions().requestPurge(); });
        }
        addActivity(route);
    } else if (route == AppRoute::history) {
        addReports(route);
    }
}

void PageHeader::addReports(AppRoute route) {
    connect(addAction(QStringLiteral("Copy Report"), QStringLiteral("doc.on.doc"),
                      identifierOn(route, "copy-report"),
                      QStringLiteral("Puts the diagnostics report on the clipboard")),
            &QPushButton::clicked, this, [this] { monitor_.reports().copyDiagnosticsReport(); });
    connect(addAction(QStringLiteral("Export"), QStringLiteral("square.and.arrow.up"),
                      identifierOn(route, "export"),
                      QStringLiteral("Writes the diagnostics report to a file")),
            &QPushButton::clicked, this, [this] { monitor_.reports().exportDiagnosticsReport(); });
}

void PageHeader::addSelectTop(AppRoute route) {
    connect(addAction(QStringLiteral("Select Top"), QStringLiteral("scope"),
                      identifierOn(route, "select-top"),
                      QStringLiteral("Selects the heaviest process for review")),
            &QPushButton::clicked, this, [this] {
                monitor_.review().selectTopProcess();
                const auto& snapshot = monitor_.sample().snapshot();
                if (snapshot && !snapshot->topProcesses.empty()) {
                    tellSelection(snapshot->topProcesses.front().pid);
                }
            });
}

void PageHeader::tellSelection(std::optional<std::int64_t> wanted) {
    // A protected process is refused, and what was selected before stays where it is.
    if (wanted && wanted == monitor_.review().selectedPID()) {
        emit selectionMade();
    }
}

void PageHeader::addActivity(AppRoute route) {
    connect(addAction(QStringLiteral("Activity"), QStringLiteral("macwindow"),
                      identifierOn(route, "activity"),
                      QStringLiteral("Opens the system's own process viewer")),
            &QPushButton::clicked, this, [this] { monitor_.applications().openActivityMonitor(); });
}

}  // namespace tallowcrest
