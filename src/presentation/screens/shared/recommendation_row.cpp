#include "presentation/screens/shared/recommendation_row.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QResizeEvent>
#include <QVBoxLayout>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int boxRadius = 8;
constexpr int barWidth = 3;
constexpr int boxPadding = 12;
constexpr int lineGap = 4;
constexpr int mostDetailLines = 4;
/// From this width on, title and detail of a compact row share a line.
constexpr int oneLineWidth = 960;
/// Heights of a compact row, which leave a gap between the buttons of neighbouring rows.
constexpr int oneLineHeight = 5 * spacing::unit;
constexpr int twoLineHeight = 6 * spacing::unit;

}  // namespace

ThemeColor severityColor(Recommendation::Severity severity) {
    using enum Recommendation::Severity;
    switch (severity) {
        case info:
            return &CrestTheme::good;
        case caution:
            return &CrestTheme::caution;
        case urgent:
            return &CrestTheme::bad;
    }
    return &CrestTheme::text;
}

RecommendationRow::RecommendationRow(Size size, const QString& buttonIdentifier, QWidget* parent)
    : QWidget(parent), size_(size) {
    icon_ = new IconView(QString(), &CrestTheme::secondaryText,
                         size == Size::prominent ? spacing::iconRegular : spacing::iconSmall, this);
    word_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText), this);
    title_ = new ElidedLabel(onCard(&CrestFonts::heading), this);
    detail_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), this);
    review_ = makeButton(u"Review"_s, QString(), buttonIdentifier,
                         u"Selects the process for review and shows it in Processes"_s, this);
    // The texts wrap alike with and without the button.
    QSizePolicy policy = review_->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    review_->setSizePolicy(policy);
    connect(review_, &QPushButton::clicked, this, [this] {
        if (shown_ && shown_->reviewPID) {
            emit reviewWanted(*shown_->reviewPID);
        }
    });
    if (size == Size::prominent) {
        layProminent();
    } else {
        layCompact();
    }
}

void RecommendationRow::layProminent() {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(boxPadding + barWidth, boxPadding, boxPadding, boxPadding);
    layout->setSpacing(boxPadding);
    layout->addWidget(icon_, 0, Qt::AlignTop);
    auto* lines = new QVBoxLayout;
    lines->setSpacing(lineGap);
    auto* first = new QHBoxLayout;
    first->setSpacing(spacing::unit);
    first->addWidget(word_);
    first->addWidget(title_, 1);
    lines->addLayout(first);
    detail_->setLines(keptDetailLines_, mostDetailLines);
    lines->addWidget(detail_);
    layout->addLayout(lines, 1);
    layout->addWidget(review_, 0, Qt::AlignVCenter);
}

void RecommendationRow::layCompact() {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(boxPadding + barWidth, 0, boxPadding, 0);
    layout->setSpacing(spacing::unit);
    layout->addWidget(icon_);
    // The same width for every severity, so that the titles are aligned.
    word_->setReservedText(severityWord(Recommendation::Severity::caution));
    layout->addWidget(word_);
    texts_ = new QBoxLayout(QBoxLayout::TopToBottom);
    texts_->setSpacing(0);
    texts_->addStretch(1);
    texts_->addWidget(title_);
    // A long title takes room from the detail, whose tool tip has the whole text.
    detail_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    texts_->addWidget(detail_);
    texts_->addStretch(1);
    layout->addLayout(texts_, 1);
    layout->addWidget(review_);
    setFixedHeight(compactHeight(0));
}

int RecommendationRow::compactHeight(int width) {
    return width >= oneLineWidth ? oneLineHeight : twoLineHeight;
}

void RecommendationRow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (event->size().width() == event->oldSize().width()) {
        return;
    }
    if (size_ == Size::prominent) {
        detailRoom_ = {};
        keepDetailLines(1);
        return;
    }
    const bool isOneLine = width() >= oneLineWidth;
    texts_->setDirection(isOneLine ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    texts_->setSpacing(isOneLine ? spacing::unit : 0);
    // On one line, the detail takes the width that the title leaves. On two lines, the stretches
    // centre them vertically.
    texts_->setStretch(0, isOneLine ? 0 : 1);
    texts_->setStretchFactor(detail_, isOneLine ? 1 : 0);
    texts_->setStretch(texts_->count() - 1, isOneLine ? 0 : 1);
    setFixedHeight(compactHeight(width()));
}

void RecommendationRow::countSample(Date sampledAt) {
    if (size_ == Size::prominent && detail_->width() > 0) {
        detailRoom_.setNeeded(static_cast<int>(detail_->shownLines().size()),
                              sampledAt.secondsSinceReference);
        keepDetailLines(std::max(1, detailRoom_.count()));
    }
}

void RecommendationRow::keepDetailLines(int lines) {
    if (lines != keptDetailLines_) {
        keptDetailLines_ = lines;
        detail_->setLines(lines, mostDetailLines);
    }
}

void RecommendationRow::setLine(const RecommendationLine& line) {
    if (shown_ == line) {
        return;
    }
    shown_ = line;
    color_ = severityColor(line.severity);
    icon_->setIcon(severityIcon(line.severity));
    icon_->setColor(color_);
    word_->setText(severityWord(line.severity));
    word_->setColor(color_);
    word_->show();
    title_->setText(line.title);
    detail_->setText(line.detail);
    review_->setVisible(line.reviewPID.has_value());
    setSpokenName(*review_, u"Review: "_s + line.title);
    update();
}

void RecommendationRow::setMessage(const QString& icon, const QString& title,
                                   const QString& detail) {
    color_ = &CrestTheme::hairline;
    icon_->setIcon(icon);
    icon_->setColor(&CrestTheme::secondaryText);
    word_->setText(QString());
    word_->hide();
    title_->setText(title);
    detail_->setText(detail);
    shown_.reset();
    review_->hide();
    update();
}

void RecommendationRow::paintEvent(QPaintEvent*) {
    if (size_ == Size::compact) {
        return;
    }
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF outline = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(QPen(theme.hairline, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(outline, boxRadius, boxRadius);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color_.in(theme));
    painter.drawRoundedRect(
        QRectF(spacing::unit / 2.0, boxPadding, barWidth, height() - 2 * boxPadding),
        barWidth / 2.0, barWidth / 2.0);
}

}  // namespace tallowcrest
