#include "presentation/screens/remote_macs/remote_profile_editor.h"

#include <QGridLayout>
#include <QLineEdit>
#include <QSignalBlocker>

#include "presentation/screens/shared/automation_toggles.h"
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
    const QString shown = dashboard_text::text(stored);
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
    purge_ = new AutomationToggle(identifier + u".allow-remote-purge"_s, this);
    connect(purge_, &AutomationToggle::wanted, this,
            [this](bool on) { emit changed({.allowRemotePurge = on}); });

    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(2 * spacing::gap);
    grid->setVerticalSpacing(spacing::gap);
    grid->addWidget(nickname_->parentWidget(), 0, 0);
    grid->addWidget(role_->parentWidget(), 0, 1);
    grid->addWidget(threshold_, 1, 0, Qt::AlignTop);
    grid->addWidget(purge_, 1, 1);
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

void RemoteProfileEditor::show(const RemoteProfile& profile) {
    showStored(*nickname_, profile.nickname);
    showStored(*role_, profile.role);
    threshold_->show(profile.warningThreshold);
    AutomationLine line;
    line.title = u"Allow remote purge on this Mac"_s;
    line.explanation = u"Each purge still asks first."_s;
    line.isOn = profile.allowRemotePurge;
    line.state = line.isOn ? SwitchState::on : SwitchState::off;
    purge_->setLine(line);
}

std::vector<QWidget*> RemoteProfileEditor::controls() const {
    return {nickname_, role_, threshold_->findChild<StepSlider*>(),
            purge_->findChild<ToggleSwitch*>()};
}

}  // namespace tallowcrest
