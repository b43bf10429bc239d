#include "presentation/screens/shared/progress_row.h"

#include <QHBoxLayout>
#include <QPushButton>

#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/settling_button.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int shortestInterval = 100;  // milliseconds

}  // namespace

ProgressRow::ProgressRow(const QString& identifier, const QString& what, QWidget* parent)
    : ProgressRow(identifier, what, {u"Stop"_s, u"Keeps what is done so far"_s}, parent) {}

ProgressRow::ProgressRow(const QString& identifier, const QString& what, const Button& button,
                         QWidget* parent)
    : QWidget(parent) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::unit);
    words_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText), this);
    words_->setObjectName(identifier);
    words_->setElideMode(Qt::ElideMiddle);
    layout->addWidget(words_, 1);
    stop_ = makeButton(button.title, QString(), identifier + u"-stop"_s, button.description, this);
    stop_->setAccessibleName(button.title + u' ' + what);
    layout->addWidget(stop_);
    connect(stop_, &QPushButton::clicked, this, &ProgressRow::stopWanted);
    due_.setSingleShot(true);
    connect(&due_, &QTimer::timeout, this, &ProgressRow::showLatest);
    placeKept_.setObjectName(u"placeKept"_s);
    placeKept_.setSingleShot(true);
    placeKept_.setInterval(SettlingButton::settlingTime);
    connect(&placeKept_, &QTimer::timeout, this, [this] { keepPlaceWhenHidden(false); });
    hide();
}

void ProgressRow::show(const QString& text, bool isStopping) {
    latest_ = isStopping ? u"Stopping…"_s : text;
    if (text.isEmpty()) {
        due_.stop();
        sinceShown_.invalidate();
        if (!isHidden()) {
            // Otherwise the focus would go to the control after this row, which a key may be about
            // to press.
            setButtonEnabled(*stop_, false);
            keepPlaceWhenHidden(true);
            hide();
            setButtonEnabled(*stop_, true);
            placeKept_.start();
        }
        return;
    }
    setButtonEnabled(*stop_, !isStopping);
    const qint64 elapsed = sinceShown_.isValid() ? sinceShown_.elapsed() : shortestInterval;
    if (elapsed >= shortestInterval || isStopping) {
        showLatest();
    } else if (!due_.isActive()) {
        due_.start(static_cast<int>(shortestInterval - elapsed));
    }
    setVisible(true);
}

void ProgressRow::keepPlaceWhenHidden(bool keeps) {
    QSizePolicy policy = sizePolicy();
    policy.setRetainSizeWhenHidden(keeps);
    setSizePolicy(policy);
}

void ProgressRow::showLatest() {
    if (words_->text() != latest_) {
        words_->setText(latest_);
        sinceShown_.start();
    }
}

}  // namespace tallowcrest
