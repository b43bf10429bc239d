#include "presentation/gauge_card.h"

#include <cmath>

#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

#include "presentation/elided_label.h"
#include "presentation/graph_geometry.h"

namespace tallowcrest {
namespace {

constexpr int ringSize = 96;
constexpr double ringStroke = 7;
constexpr int ringStart = 225;
constexpr int ringSpan = 270;
// The ring beside the longest single word of a title.
constexpr int narrowestCard = 224;

long wholePercent(double value) {
    return std::lround(value);
}

ThemeColor stateColor(double value) {
    if (value >= 85) {
        return &CrestTheme::bad;
    }
    return value >= 70 ? &CrestTheme::caution : &CrestTheme::good;
}

}  // namespace

QString gaugeStateWord(double value) {
    const double safe = safeGraphValue(value);
    if (safe >= 85) {
        return QStringLiteral("High");
    }
    return safe >= 70 ? QStringLiteral("Elevated") : QStringLiteral("Normal");
}

GaugeRing::GaugeRing(QWidget* parent) : QWidget(parent) {
    setFixedSize(ringSize, ringSize);
}

void GaugeRing::setValue(double value) {
    const double before = value_;
    value_ = safeGraphValue(value);
    if (wholePercent(before) != wholePercent(value_)) {
        update();
    }
}

void GaugeRing::setTint(const ThemeColor& tint) {
    if (tint != tint_) {
        tint_ = tint;
        update();
    }
}

void GaugeRing::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double inset = ringStroke / 2 + 0.5;
    const QRectF arc = QRectF(rect()).adjusted(inset, inset, -inset, -inset);
    QPen pen(theme.track, ringStroke, Qt::SolidLine, Qt::RoundCap);
    painter.setPen(pen);
    painter.drawArc(arc, ringStart * 16, -ringSpan * 16);
    // The arc goes with the figure in its middle, in whole percent: it moves when that does.
    const long percent = wholePercent(value_);
    if (percent > 0) {
        pen.setColor(tint_.in(theme));
        painter.setPen(pen);
        painter.drawArc(arc, ringStart * 16,
                        -static_cast<int>(ringSpan * 16 * percent / 100));
    }
    painter.setFont(CrestFonts::current().title);
    painter.setPen(theme.text);
    painter.drawText(rect(), Qt::AlignCenter, QStringLiteral("%1%").arg(percent));
}

GaugeCard::GaugeCard(const QString& title, const ThemeColor& tint, QWidget* parent) : Card(parent) {
    installAccessibleFigures();
    setMinimumWidth(narrowestCard);
    ring_ = new GaugeRing;
    ring_->setTint(tint);
    title_ = new ElidedLabel(title, &CrestFonts::heading, &CrestTheme::text);
    title_->setLines(1, 2);
    state_ = new ElidedLabel(QString(), &CrestFonts::body, &CrestTheme::good);
    detail_ = new ElidedLabel(QString(), &CrestFonts::caption, &CrestTheme::secondaryText);
    detail_->setLines(2, 4);

    auto* texts = new QVBoxLayout;
    texts->setSpacing(spacing::unit / 2);
    texts->addStretch(1);
    texts->addWidget(title_);
    texts->addWidget(state_);
    texts->addWidget(detail_);
    texts->addStretch(1);
    auto* row = new QHBoxLayout;
    row->setSpacing(spacing::gap);
    row->addWidget(ring_, 0, Qt::AlignVCenter);
    row->addLayout(texts, 1);
    contentLayout()->addLayout(row);
    setTitle(title);
    showState();
}

void GaugeCard::setValue(double value) {
    ring_->setValue(value);
    showState();
}

void GaugeCard::setTitle(const QString& title) {
    title_->setText(title);
    setAccessibleName(title);
}

void GaugeCard::setDetail(const QString& detail) {
    detail_->setText(detail);
    setAccessibleDescription(accessibleValue());
}

void GaugeCard::setTint(const ThemeColor& tint) {
    ring_->setTint(tint);
}

QString GaugeCard::accessibleValue() const {
    QString text =
        QStringLiteral("%1%, %2").arg(wholePercent(value())).arg(gaugeStateWord(value()));
    if (!detail_->text().isEmpty()) {
        text += QStringLiteral(", ") + detail_->text();
    }
    return text;
}

void GaugeCard::showState() {
    state_->setText(gaugeStateWord(value()));
    state_->setColor(stateColor(value()));
    setAccessibleDescription(accessibleValue());
}

}  // namespace tallowcrest
