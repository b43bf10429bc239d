#include "presentation/menu_bar_panel.h"

#include <algorithm>
#include <utility>

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/controls.h"
#include "presentation/dashboard_text.h"
#include "presentation/elided_label.h"
#include "presentation/theme.h"

namespace tallowcrest {
namespace {

constexpr int panelWidth = 288;

}  // namespace

MenuBarPanel::MenuBarPanel(SystemMonitor& monitor, std::vector<MenuBarEntry> entries)
    // Not a popup: those are kept from assistive technology, and one without a window that it
    // belongs to never shows under Wayland.
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      monitor_(monitor) {
    setObjectName(QStringLiteral("menubar.panel"));
    setAccessibleName(QStringLiteral("Tallowcrest"));
    setFixedWidth(panelWidth);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(spacing::cardPadding, spacing::cardPadding, spacing::cardPadding,
                               spacing::cardPadding);
    layout->setSpacing(spacing::unit / 2);
    load_ = new ElidedLabel(QString(), &CrestFonts::heading, &CrestTheme::text, this);
    topGroup_ = new ElidedLabel(QString(), &CrestFonts::body, &CrestTheme::secondaryText, this);
    latestHeading_ = new ElidedLabel(QStringLiteral("Latest"), &CrestFonts::caption,
                                     &CrestTheme::secondaryText, this);
    latest_ = new ElidedLabel(QString(), &CrestFonts::body, &CrestTheme::text, this);
    // A long name gives way before its figure does, and a long title before its severity.
    topGroup_->setElideMode(Qt::ElideMiddle);
    latest_->setLines(1, 3);
    load_->setObjectName(QStringLiteral("menubar.load"));
    topGroup_->setObjectName(QStringLiteral("menubar.top-group"));
    latest_->setObjectName(QStringLiteral("menubar.latest"));
    for (ElidedLabel* line : {load_, topGroup_, latestHeading_, latest_}) {
        layout->addWidget(line);
    }
    layout->addSpacing(spacing::unit);
    for (MenuBarEntry& entry : entries) {
        auto* button = makeButton(entry.title, entry.icon, entry.identifier, entry.title, this);
        connect(button, &QPushButton::clicked, this, [this, run = std::move(entry.run)] {
            dismiss();
            run();
        });
        layout->addWidget(button);
    }
    subscription_ = monitor_.observe([this] {
        if (isVisible()) {
            refresh();
        }
    });
}

void MenuBarPanel::refresh() {
    const auto& snapshot = monitor_.sample().snapshot();
    const auto& recommendations = monitor_.sample().recommendations();
    load_->setText(snapshot ? dashboard_text::panelLoad(*snapshot) : QStringLiteral("Sampling..."));
    topGroup_->setText(snapshot ? dashboard_text::panelTopGroup(*snapshot) : QString());
    topGroup_->setVisible(!topGroup_->text().isEmpty());
    const bool hasLatest = snapshot && !recommendations.empty();
    latest_->setText(hasLatest ? dashboard_text::panelLatest(recommendations.front()) : QString());
    latest_->setVisible(hasLatest);
    latestHeading_->setVisible(hasLatest);
    adjustSize();
    place();
}

void MenuBarPanel::toggleAt(const QPoint& anchor) {
    // A click on the item may first take the focus away, which has closed the panel already.
    constexpr qint64 sameClickMilliseconds = 250;
    const bool wasJustLeft = sinceLeft_.isValid() && sinceLeft_.elapsed() < sameClickMilliseconds;
    if (isVisible() || wasJustLeft) {
        dismiss();
        return;
    }
    anchor_ = anchor;
    refresh();
    show();
    raise();
    activateWindow();
}

void MenuBarPanel::place() {
    const QScreen* screen = QGuiApplication::screenAt(anchor_);
    const QRect area =
        (screen != nullptr ? screen : QGuiApplication::primaryScreen())->availableGeometry();
    const int left = std::clamp(anchor_.x() - width() / 2, area.left(),
                                std::max(area.left(), area.right() - width()));
    const int top =
        std::clamp(anchor_.y(), area.top(), std::max(area.top(), area.bottom() - height()));
    move(left, top);
}

void MenuBarPanel::dismiss() {
    hide();
    sinceLeft_.invalidate();
}

bool MenuBarPanel::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate && isVisible()) {
        hide();
        sinceLeft_.start();
    }
    return QWidget::event(event);
}

void MenuBarPanel::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        dismiss();
        return;
    }
    QWidget::keyPressEvent(event);
}

void MenuBarPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    monitor_.startMonitoring();
    refresh();
}

void MenuBarPanel::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    painter.fillRect(rect(), theme.pageBackground);
    painter.setPen(theme.hairline);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

}  // namespace tallowcrest
