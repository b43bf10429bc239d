#include "presentation/widgets/gauge_card.h"

#include <cmath>

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/figure_text.h"
#include "presentation/widgets/graph_geometry.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int ringSize = 96;
constexpr double ringStroke = 7;
constexpr int ringGap = 12;
constexpr int ringStart = 225;
constexpr int ringSpan = 270;
// Wide enough for the ring beside the longest single word of a title.
constexpr int narrowestCard = 224;

/// `length` degrees of the ring from its start, clockwise.
void drawRing(QPainter& painter, const QColor& color, double length) {
    const double inset = ringStroke / 2 + 0.5;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, ringStroke, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(QRectF(0, 0, ringSize, ringSize).adjusted(inset, inset, -inset, -inset),
                    ringStart * 16, -static_cast<int>(length * 16));
}

enum class GaugeState { normal, elevated, high };

GaugeState gaugeState(double value) {
    const double safe = safeGraphValue(value);
    if (safe >= 85) {
        return GaugeState::high;
    }
    return safe >= 70 ? GaugeState::elevated : GaugeState::normal;
}

}  // namespace

QString gaugeStateWord(double value) {
    switch (gaugeState(value)) {
        case GaugeState::high:
            return u"High"_s;
        case GaugeState::elevated:
            return u"Elevated"_s;
        case GaugeState::normal:
            break;
    }
    return u"Normal"_s;
}

ThemeColor gaugeStateColor(double value) {
    switch (gaugeState(value)) {
        case GaugeState::high:
            return &CrestTheme::bad;
        case GaugeState::elevated:
            return &CrestTheme::caution;
        case GaugeState::normal:
            break;
    }
    return &CrestTheme::good;
}

GaugeRing::GaugeRing(QWidget* parent) : QWidget(parent) {
    // Opaque, so that a new figure does not repaint the card below.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFixedSize(ringSize, ringSize);
}

void GaugeRing::setValue(double value, const QString& figure) {
    value_ = safeGraphValue(value);
    if (figure != figure_) {
        figure_ = figure;
        update();
    }
}

void GaugeRing::clearValue() {
    setValue(0, QString());
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
    painter.drawPixmap(0, 0, emptyRing(theme));
    // The arc moves in whole percents, together with the figure in its middle.
    const double percent = std::round(value_);
    if (percent > 0) {
        drawRing(painter, tint_.in(theme), ringSpan * percent / 100);
    }
    painter.setFont(CrestFonts::current().title);
    drawFigure(painter, rect(), Qt::AlignHCenter, hasValue() ? figure_ : u"–"_s, theme.text,
               theme.secondaryText);
}

const QPixmap& GaugeRing::emptyRing(const CrestTheme& theme) {
    const double ratio = devicePixelRatioF();
    if (emptyRing_.devicePixelRatio() != ratio || emptyRingTrack_ != theme.track ||
        emptyRingGround_ != theme.cardBackground) {
        emptyRingTrack_ = theme.track;
        emptyRingGround_ = theme.cardBackground;
        emptyRing_ = QPixmap((QSizeF(size()) * ratio).toSize());
        emptyRing_.setDevicePixelRatio(ratio);
        emptyRing_.fill(theme.cardBackground);
        QPainter painter(&emptyRing_);
        drawRing(painter, theme.track, ringSpan);
    }
    return emptyRing_;
}

GaugeCard::GaugeCard(const QString& title, QWidget* parent) : Card(parent) {
    installAccessibleFigures();
    setMinimumWidth(narrowestCard);
    ring_ = new GaugeRing;
    title_ = new ElidedLabel(title, onCard(&CrestFonts::heading));
    title_->setLines(1, 2);
    state_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::good));
    detail_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText));
    detail_->setLines(2, 4);
    // The widest word, so that a change of state moves no neighbour.
    state_->setReservedText(gaugeStateWord(70));

    // Always as high as two lines, with a one-line title at the bottom, so that the state words of
    // neighbouring cards are level even if one title wraps.
    auto* titleRoom = new QHBoxLayout;
    titleRoom->addStrut(2 * QFontMetrics(CrestFonts::current().heading).lineSpacing());
    titleRoom->addWidget(title_, 1, Qt::AlignBottom);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(spacing::unit / 2);
    texts->addLayout(titleRoom);
    texts->addWidget(state_);
    texts->addWidget(detail_);
    texts->addStretch(1);
    auto* row = new QHBoxLayout;
    row->setSpacing(ringGap);
    row->addWidget(ring_, 0, Qt::AlignVCenter);
    row->addLayout(texts, 1);
    contentLayout()->addLayout(row);
    setTitle(title);
    showState(QString());
}

void GaugeCard::setValue(double value, const QString& figure, const QString& detail) {
    ring_->setValue(value, figure);
    showState(detail);
}

void GaugeCard::clearValue(const QString& detail) {
    ring_->clearValue();
    showState(detail);
}

void GaugeCard::setTitle(const QString& title) {
    title_->setText(title);
    setSpokenName(*this, title);
}

QString GaugeCard::accessibleValue() const {
    QStringList parts;
    if (ring_->hasValue()) {
        parts << ring_->figure() << gaugeStateWord(value());
    }
    if (!detail_->text().isEmpty()) {
        parts << detail_->text();
    }
    return parts.join(u", "_s);
}

void GaugeCard::showState(const QString& detail) {
    const ThemeColor color = gaugeStateColor(value());
    ring_->setTint(color);
    state_->setText(ring_->hasValue() ? gaugeStateWord(value()) : QString());
    state_->setColor(color);
    detail_->setText(detail);
    setSpokenDescription(*this, accessibleValue());
    // When the focus enters the section, screen readers read its labels out, but not those of one
    // or two words.
    setSpokenName(*title_, ring_->hasValue() ? title_->text() + u": "_s + ring_->figure() +
                                                   u", "_s + state_->text()
                                             : title_->text());
}

}  // namespace tallowcrest
