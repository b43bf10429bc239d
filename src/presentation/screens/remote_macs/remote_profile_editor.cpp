#include "presentation/screens/remote_macs/remote_profile_editor.h"

#include <QGridLayout>
#include <QLineEdit>
#include <QSignalBlocker>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/limit_row.h"
#include "presentation/widgets/step_slider.h"
#include "presentation/widgets/theme.h"
#include "presentation/widgets/toggle_switch.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int longestText = 256;

void showStored(QLineEdit& field, const std::string& stored) {
    const QString shown = dashboard_text::text(stored).left(longestText);
    if (!field.hasFocus() && field.text().trimmed() != shown.trimmed()) {
        const QSignalBlocker quiet(&field);
        field.setText(shown);
        field.setCursorPosition(0);
    }
}

}  // namespace

RemoteProfileEditor::RemoteProfileEditor(const QString& identifier, QWidget* parent)
    : QWidget(parent) {
    nickname_ = makeField(u"Nickname"_s, identifier + u".nickname"_s,
                          u"The name of this machine in Tallowcrest"_s);
    connect(nickname_, &QLineEdit::textChanged, this,
            [this](const QString& text) { emit changed({.nickname = text.toStdString()}); });
    role_ = makeField(u"Role"_s, identifier + u".role"_s, u"What this machine is for"_s);
    connect(role_, &QLineEdit::textChanged, this,
            [this](const QString& text) { emit changed({.role = text.toStdString()}); });
    threshold_ = new LimitRow(u"Warn at"_s, u"percent of memory"_s, identifier + u".threshold"_s,
                              {65, 95, 1}, dashboard_text::percentText, this);
    connect(threshold_, &LimitRow::moved, this,
            [this](double value) { emit changed({.warningThreshold = value}); });

    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(spacing::gap);
    grid->setVerticalSpacing(spacing::gap);
    grid->addWidget(nickname_->parentWidget(), 0, 0);
    grid->addWidget(role_->parentWidget(), 0, 1);
    grid->addWidget(threshold_, 1, 0, Qt::AlignTop);
    grid->addWidget(makePermission(identifier + u".allow-remote-purge"_s), 1, 1);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
}

QLineEdit* RemoteProfileEditor::makeField(const QString& title, const QString& identifier,
                                          const QString& description) {
    auto* cell = new QWidget(this);
    auto* layout = new QVBoxLayout(cell);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::unit / 2);
    layout->addWidget(new ElidedLabel(title, onCard(&CrestFonts::body), cell));
    auto* field = new QLineEdit(cell);
    field->setObjectName(identifier);
    field->setAccessibleName(title);
    field->setAccessibleDescription(description);
    field->setMaxLength(longestText);
    field->setTextMargins(spacing::unit, 0, spacing::unit, 0);
    layout->addWidget(field);
    return field;
}

QWidget* RemoteProfileEditor::makePermission(const QString& identifier) {
    auto* cell = new QWidget(this);
    auto* row = new QHBoxLayout(cell);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing::unit);
    purge_ = new ToggleSwitch(cell);
    purge_->setObjectName(identifier);
    connect(purge_, &QAbstractButton::clicked, this,
            [this] { emit changed({.allowRemotePurge = !purge_->isChecked()}); });
    row->addWidget(purge_, 0, Qt::AlignTop);
    auto* words = new QVBoxLayout;
    words->setSpacing(2);
    // Centres the title vertically on the switch.
    words->addSpacing(spacing::unit / 2);
    purgeName_ = new ElidedLabel(onCard(&CrestFonts::body), cell);
    purgeName_->setLines(1, 2);
    words->addWidget(purgeName_);
    purgeState_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText), cell);
    purgeState_->setObjectName(identifier + u".state"_s);
    purgeState_->setLines(1, 2);
    words->addWidget(purgeState_);
    words->addStretch(1);
    row->addLayout(words, 1);
    return cell;
}

void RemoteProfileEditor::show(const RemoteProfile& profile, bool isLinux) {
    showStored(*nickname_, profile.nickname);
    showStored(*role_, profile.role);
    threshold_->show(profile.warningThreshold);
    purgeName_->setText(isLinux ? u"Allow remote purge on this machine"_s
                                : u"Allow remote purge on this Mac"_s);
    setSpokenName(*purge_, purgeName_->text());
    purge_->setChecked(profile.allowRemotePurge);
    purgeState_->setText(profile.allowRemotePurge ? u"On. Each purge still asks first."_s
                                                  : u"Off. Remote Purge is refused."_s);
    setSpokenDescription(*purge_, purgeState_->text());
}

std::vector<QWidget*> RemoteProfileEditor::controls() const {
    return {nickname_, role_, threshold_->findChild<StepSlider*>(), purge_};
}

}  // namespace tallowcrest
