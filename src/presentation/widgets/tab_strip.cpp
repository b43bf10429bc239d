#include "presentation/widgets/tab_strip.h"

#include <QFocusEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>

#include "presentation/widgets/button.h"
#include "presentation/widgets/crest_style.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int tabHeight = 28;
constexpr int tabPadding = 12;
constexpr int tabRadius = 6;
constexpr int frameInset = 2;
constexpr int frameRadius = tabRadius + frameInset;
constexpr double selectedShare = 0.18;
constexpr double hoverShare = 0.06;

}  // namespace

// One tab ----------------------------------------------------------------------------------------

StripTab::StripTab(const QString& title, const QString& identifier, const QString& description,
                   StripKind kind, QWidget* parent)
    : QAbstractButton(parent), kind_(kind) {
    installAccessibleButtons();
    setObjectName(identifier);
    setText(title);
    setAccessibleName(title);
    setAccessibleDescription(description);
    setCheckable(true);
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void StripTab::addAccessibleState(QAccessible::State& state) const {
    if (kind_ == StripKind::tabs) {
        state.selectable = true;
        state.selected = isChecked();
    } else {
        state.checkable = true;
        state.checked = isChecked();
    }
}

QSize StripTab::sizeHint() const {
    // The width of the selected state, so that a selection moves no tab.
    return {figuresWidth(CrestFonts::current().heading, text()) + 2 * tabPadding, tabHeight};
}

void StripTab::enterEvent(QEnterEvent* event) {
    QAbstractButton::enterEvent(event);
    update();
}

void StripTab::leaveEvent(QEvent* event) {
    QAbstractButton::leaveEvent(event);
    update();
}

void StripTab::focusInEvent(QFocusEvent* event) {
    hasRing_ = showsFocusRing(event->reason(), hasRing_);
    QAbstractButton::focusInEvent(event);
}

void StripTab::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Left:
            emit neighborWanted(-1);
            return;
        case Qt::Key_Right:
            emit neighborWanted(1);
            return;
        case Qt::Key_Up:
        case Qt::Key_Down:
            // Left to the page. Qt would give the focus to the nearest button above or below.
            event->ignore();
            return;
        default:
            if (!pressesByReturn(*this, *event)) {
                QAbstractButton::keyPressEvent(event);
            }
    }
}

void StripTab::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isChecked() || underMouse()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(isChecked() ? mixedColor(theme.cardBackground, theme.accent, selectedShare)
                                     : mixedColor(theme.cardBackground, theme.text, hoverShare));
        painter.drawRoundedRect(QRectF(rect()), tabRadius, tabRadius);
    }
    if (isChecked()) {
        // The selected tab differs by shape as well as by colour.
        constexpr int barWidth = 16;
        constexpr int barHeight = 3;
        painter.setBrush(theme.accent);
        painter.drawRoundedRect(
            QRectF((width() - barWidth) / 2.0, height() - barHeight - 1, barWidth, barHeight),
            barHeight / 2.0, barHeight / 2.0);
    }
    if (hasFocus() && hasRing_) {
        painter.setPen(QPen(theme.accentText, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), tabRadius, tabRadius);
    }
    painter.setFont(isChecked() ? CrestFonts::current().heading : CrestFonts::current().body);
    painter.setPen(isChecked() ? theme.text : theme.secondaryText);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
}

// The strip --------------------------------------------------------------------------------------

TabStrip::TabStrip(const QString& accessibleName, QWidget* parent, StripKind kind)
    : QWidget(parent), kind_(kind) {
    installAccessibleFigures();
    setAccessibleName(accessibleName);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(frameInset, frameInset, frameInset, frameInset);
    layout->setSpacing(frameInset);
}

int TabStrip::addTab(const QString& title, const QString& identifier, const QString& description) {
    const auto index = static_cast<int>(tabs_.size());
    auto* tab = new StripTab(title, identifier, description, kind_, this);
    // Only the selected tab can have the focus.
    connect(tab, &QAbstractButton::clicked, this,
            [this, index] { choose(index, Qt::MouseFocusReason); });
    connect(tab, &StripTab::neighborWanted, this,
            [this](int places) { choose(current_ + places, Qt::OtherFocusReason); });
    layout()->addWidget(tab);
    tabs_.push_back(tab);
    descriptions_.append(description);
    setCurrentIndex(current_);
    for (qsizetype i = 0; i < descriptions_.size(); ++i) {
        tabs_.at(static_cast<std::size_t>(i))
            ->setAccessibleDescription(u"%1 of %2. %3"_s.arg(QString::number(i + 1),
                                                             QString::number(descriptions_.size()),
                                                             descriptions_.at(i)));
    }
    return index;
}

void TabStrip::setCurrentIndex(int index) {
    current_ = index;
    for (int i = 0; i < static_cast<int>(tabs_.size()); ++i) {
        StripTab* tab = tabs_.at(static_cast<std::size_t>(i));
        tab->setChecked(i == index);
        tab->setFocusPolicy(i == index ? Qt::StrongFocus : Qt::NoFocus);
    }
    setFocusProxy(tabs_.at(static_cast<std::size_t>(index)));
}

void TabStrip::choose(int index, Qt::FocusReason reason) {
    if (index != current_ && index >= 0 && index < static_cast<int>(tabs_.size())) {
        emit chosen(index, reason);
    }
}

void TabStrip::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(theme.hairline);
    painter.setBrush(theme.cardBackground);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), frameRadius,
                            frameRadius);
}

}  // namespace tallowcrest
