#include "presentation/shell/menu_bar_panel.h"

#include <algorithm>

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include "advisor/advisor.h"
#include "core/activity_log.h"
#include "core/jobs/jobs.h"
#include "core/settings/settings_owner.h"
#include "integration/integration.h"
#include "monitor/system_monitor.h"
#include "presentation/screens/shared/timeline_graph.h"
#include "presentation/shell/menu_bar_row.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/stable_line_graph.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"
#include "sampling/latest_sample.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int panelWidth = 288;
constexpr int graphHeight = 12 * spacing::unit;

/// A hairline between two groups of commands.
class Separator final : public QWidget {
public:
    explicit Separator(QWidget* parent) : QWidget(parent) { setFixedHeight(spacing::unit + 1); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setPen(CrestTheme::current().hairline);
        painter.drawLine(spacing::unit, height() / 2, width() - 1 - spacing::unit, height() / 2);
    }
};

}  // namespace

MenuBarPanel::MenuBarPanel(SystemMonitor& monitor,
                           const std::vector<std::vector<MenuBarEntry>>& groups)
    // Not a popup: those are hidden from assistive technology, and without a parent window they
    // never appear under Wayland.
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      monitor_(monitor),
      changes_(monitor.services().jobs.mainQueue(), [this] {
          if (isVisible()) {
              refresh();
          }
      }) {
    setObjectName(u"menubar.panel"_s);
    setAccessibleName(u"Tallowcrest"_s);
    setFixedWidth(panelWidth);
    setFocusPolicy(Qt::ClickFocus);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(spacing::unit, spacing::unit, spacing::unit, spacing::unit);
    layout->setSpacing(0);
    layout->addWidget(makeFigures());
    layout->addSpacing(spacing::unit);
    layout->addWidget(makeRows(groups));
    changes_.observe({&monitor_.sample().observable(), &monitor_.settingsOwner().observable(),
                      &monitor_.advisor().provider.observable(),
                      &monitor_.integration().login.observable()});
}

QWidget* MenuBarPanel::makeFigures() {
    figures_ = new QWidget(this);
    auto* layout = new QVBoxLayout(figures_);
    // Aligned with the rows' icons.
    layout->setContentsMargins(spacing::unit, spacing::unit, spacing::unit, spacing::unit);
    layout->setSpacing(spacing::unit / 2);
    load_ = new ElidedLabel({&CrestFonts::heading, &CrestTheme::text}, figures_);
    topGroup_ = new ElidedLabel({&CrestFonts::body, &CrestTheme::secondaryText}, figures_);
    latestHeading_ =
        new ElidedLabel(u"Latest"_s, {&CrestFonts::caption, &CrestTheme::secondaryText}, figures_);
    latest_ = new ElidedLabel({&CrestFonts::body, &CrestTheme::text}, figures_);
    // Elide a long name before its figure, and a long title before its severity.
    topGroup_->setElideMode(Qt::ElideMiddle);
    latest_->setLines(1, 3);
    load_->setObjectName(u"menubar.load"_s);
    topGroup_->setObjectName(u"menubar.top-group"_s);
    latest_->setObjectName(u"menubar.latest"_s);
    for (ElidedLabel* line : {load_, topGroup_, latestHeading_, latest_}) {
        layout->addWidget(line);
    }
    layout->addSpacing(spacing::unit / 2);
    layout->addWidget(makeGraph());
    return figures_;
}

QWidget* MenuBarPanel::makeGraph() {
    timeline_ = new Card(figures_);
    timeline_->setObjectName(u"menubar.timeline"_s);
    timeline_->setAccessibleName(u"Live Performance Timeline"_s);
    timeline_->layout()->setContentsMargins(spacing::unit, spacing::unit, spacing::unit,
                                            spacing::unit);
    graph_ = makeTimelineGraph(u"menubar.graph"_s, timeline_);
    graph_->setFixedHeight(graphHeight);
    timeline_->contentLayout()->addWidget(graph_);
    return timeline_;
}

QWidget* MenuBarPanel::makeRow(const MenuBarEntry& entry, QWidget* rows) {
    auto* row = new MenuBarRow(entry.title(), entry.icon, entry.identifier, rows);
    row->setDanger(entry.isDanger);
    // A button and the scroll area around it have uses of their own for the arrow keys.
    row->installEventFilter(this);
    connect(row, &QPushButton::clicked, this, [this, run = entry.run] {
        dismiss();
        run();
    });
    rows_.emplace_back(row, entry);
    return row;
}

QWidget* MenuBarPanel::makeRows(const std::vector<std::vector<MenuBarEntry>>& groups) {
    auto* rows = new QWidget;
    auto* layout = new QVBoxLayout(rows);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (const std::vector<MenuBarEntry>& group : groups) {
        if (layout->count() > 0) {
            layout->addWidget(new Separator(rows));
        }
        for (const MenuBarEntry& entry : group) {
            layout->addWidget(makeRow(entry, rows));
        }
    }
    commands_ = new QScrollArea(this);
    commands_->setFrameShape(QFrame::NoFrame);
    commands_->setWidgetResizable(true);
    commands_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    commands_->setFocusPolicy(Qt::NoFocus);
    commands_->setWidget(rows);
    commands_->viewport()->setAutoFillBackground(false);
    rows->setAutoFillBackground(false);
    return commands_;
}

void MenuBarPanel::refresh() {
    const auto& snapshot = monitor_.sample().snapshot();
    const auto& recommendations = monitor_.sample().recommendations();
    load_->setText(snapshot ? dashboard_text::panelLoad(*snapshot) : u"Sampling..."_s);
    topGroup_->setText(snapshot ? dashboard_text::panelTopGroup(*snapshot) : QString());
    topGroup_->setVisible(!topGroup_->text().isEmpty());
    const bool hasLatest = snapshot && !recommendations.empty();
    latest_->setText(hasLatest ? dashboard_text::panelLatest(recommendations.front()) : QString());
    latest_->setVisible(hasLatest);
    latestHeading_->setVisible(hasLatest);
    timeline_->setVisible(snapshot.has_value());
    showTimeline(*graph_,
                 {monitor_.sample().history(), monitor_.log().activityLog(),
                  monitor_.settings().warningThreshold},
                 timelineSummary(monitor_.sample().history()));
    for (const auto& [row, entry] : rows_) {
        row->setTitle(entry.title());
        row->setVisible(entry.isShown());
    }
    fit();
    place();
}

void MenuBarPanel::fit() {
    const QLayout& figures = *figures_->layout();
    const int figuresHeight = figures.hasHeightForWidth()
                                  ? figures.totalHeightForWidth(panelWidth - 2 * spacing::unit)
                                  : figures.totalSizeHint().height();
    // The margins, and the gap between the figures and the commands.
    const int restHeight = figuresHeight + 3 * spacing::unit;
    const int allRows = commands_->widget()->sizeHint().height();
    const int rows =
        std::min(allRows, std::max(MenuBarRow::rowHeight, screenArea().height() - restHeight));
    commands_->setFixedHeight(rows);
    setFixedHeight(restHeight + rows);
}

QRect MenuBarPanel::screenArea() const {
    const QScreen* screen = QGuiApplication::screenAt(anchor_);
    return (screen != nullptr ? screen : QGuiApplication::primaryScreen())->availableGeometry();
}

void MenuBarPanel::toggleAt(const QPoint& anchor) {
    // A click on the item may first take the focus away, which already closes the panel.
    constexpr qint64 sameClickMilliseconds = 250;
    const bool wasJustLeft = sinceLeft_.isValid() && sinceLeft_.elapsed() < sameClickMilliseconds;
    if (isVisible() || wasJustLeft) {
        dismiss();
        return;
    }
    anchor_ = anchor;
    // No command has the focus until a key is pressed.
    setFocus(Qt::PopupFocusReason);
    commands_->verticalScrollBar()->setValue(0);
    show();
    raise();
    activateWindow();
}

void MenuBarPanel::place() {
    const QRect area = screenArea();
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
    if (!moveFocusFor(*event)) {
        QWidget::keyPressEvent(event);
    }
}

bool MenuBarPanel::eventFilter(QObject* object, QEvent* event) {
    return (event->type() == QEvent::KeyPress && moveFocusFor(*static_cast<QKeyEvent*>(event))) ||
           QWidget::eventFilter(object, event);
}

bool MenuBarPanel::moveFocusFor(const QKeyEvent& event) {
    const bool forward = event.key() == Qt::Key_Down;
    if (!forward && event.key() != Qt::Key_Up) {
        return false;
    }
    std::vector<MenuBarRow*> shown;
    for (const auto& [row, entry] : rows_) {
        if (row->isVisible()) {
            shown.push_back(row);
        }
    }
    if (!forward) {
        std::ranges::reverse(shown);
    }
    const auto focused = std::ranges::find_if(shown, &QWidget::hasFocus);
    const auto next = focused == shown.end() ? shown.begin() : std::next(focused);
    if (!shown.empty()) {
        MenuBarRow* row = next == shown.end() ? shown.front() : *next;
        row->setFocus(Qt::TabFocusReason);
        commands_->ensureWidgetVisible(row);
    }
    return true;
}

void MenuBarPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    monitor_.startMonitoring();
    monitor_.integration().login.lookAgain();
    refresh();
}

void MenuBarPanel::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    painter.fillRect(rect(), theme.pageBackground);
    painter.setPen(theme.hairline);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    const int between = commands_->y() - spacing::unit / 2 - 1;
    painter.drawLine(2 * spacing::unit, between, width() - 1 - 2 * spacing::unit, between);
}

}  // namespace tallowcrest
