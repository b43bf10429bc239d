#include "presentation/widgets/accessibility.h"

#include <QAccessibleWidget>
#include <QPushButton>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class FigureInterface : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    FigureInterface(QWidget* widget, AccessibleFigure* figure)
        : QAccessibleWidget(widget, figure->accessibleRole()), figure_(figure) {}

    QString text(QAccessible::Text kind) const override {
        // Assistive technology may still ask while the widget is being destroyed.
        if (kind == QAccessible::Value && isValid()) {
            return figure_->accessibleValue();
        }
        return QAccessibleWidget::text(kind);
    }

    int childCount() const override {
        return isValid() && figure_->saysAllWithin() ? 0 : QAccessibleWidget::childCount();
    }
    QAccessibleInterface* child(int index) const override {
        return index < childCount() ? QAccessibleWidget::child(index) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        return childCount() > 0 ? QAccessibleWidget::indexOfChild(child) : -1;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface && isValid() && figure_->accessiblePercent()) {
            return static_cast<QAccessibleValueInterface*>(this);
        }
        return QAccessibleWidget::interface_cast(type);
    }

    QVariant currentValue() const override {
        return isValid() ? figure_->accessiblePercent().value_or(0) : 0.0;
    }
    void setCurrentValue(const QVariant&) override {}
    QVariant minimumValue() const override { return 0.0; }
    QVariant maximumValue() const override { return 100.0; }
    QVariant minimumStepSize() const override { return 1.0; }

private:
    AccessibleFigure* figure_;
};

QAccessibleInterface* figureInterface(const QString&, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    auto* figure = dynamic_cast<AccessibleFigure*>(object);
    return widget != nullptr && figure != nullptr ? new FigureInterface(widget, figure) : nullptr;
}

/// Qt's own interface toggles a checkable button without a click.
class ButtonInterface final : public QAccessibleWidget {
public:
    explicit ButtonInterface(QAbstractButton* button) : QAccessibleWidget(button) {}

    QAccessible::Role role() const override {
        if (const auto* special = dynamic_cast<const AccessibleButton*>(object())) {
            return special->accessibleRole();
        }
        const QAbstractButton* shown = button();
        return shown == nullptr || !shown->isCheckable() ? QAccessible::Button
               : shown->autoExclusive()                  ? QAccessible::RadioButton
                                                         : QAccessible::CheckBox;
    }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        if (const auto* special = dynamic_cast<const AccessibleButton*>(object())) {
            special->addAccessibleState(state);
        } else if (const QAbstractButton* shown = button()) {
            const auto* push = qobject_cast<const QPushButton*>(shown);
            state.checkable = shown->isCheckable();
            state.checked = shown->isChecked();
            state.pressed = shown->isDown();
            state.defaultButton = push != nullptr && push->isDefault();
        }
        return state;
    }

    QString text(QAccessible::Text kind) const override {
        const QString set = QAccessibleWidget::text(kind);
        // The buttons of Qt's dialogs have no accessible name.
        return kind == QAccessible::Name && set.isEmpty() && isValid()
                   ? button()->text().remove(u'&')
                   : set;
    }

    QStringList actionNames() const override {
        QStringList names;
        if (canBePressed()) {
            names.append(state().checkable ? toggleAction() : pressAction());
        }
        return names + QAccessibleWidget::actionNames();
    }

    void doAction(const QString& name) override {
        if (name != pressAction() && name != toggleAction()) {
            QAccessibleWidget::doAction(name);
        } else if (canBePressed()) {
            button()->click();
        }
    }

private:
    /// The tree has hidden buttons too. What they act on may be gone.
    bool canBePressed() const {
        return isValid() && button()->isEnabled() && button()->isVisible();
    }
    QAbstractButton* button() const { return qobject_cast<QAbstractButton*>(object()); }
};

QAccessibleInterface* buttonInterface(const QString&, QObject* object) {
    auto* button = qobject_cast<QAbstractButton*>(object);
    const bool isOurs = button != nullptr && qobject_cast<QToolButton*>(object) == nullptr;
    return isOurs ? new ButtonInterface(button) : nullptr;
}

}  // namespace

void setSpokenName(QWidget& widget, const QString& name) {
    if (name != widget.accessibleName()) {
        widget.setAccessibleName(name);
    }
}

void setSpokenDescription(QWidget& widget, const QString& description) {
    if (description != widget.accessibleDescription()) {
        widget.setAccessibleDescription(description);
    }
}

void setExplanation(QWidget& widget, const QString& words) {
    if (words != widget.toolTip()) {
        widget.setToolTip(words);
    }
    setSpokenDescription(widget, words);
}

QString spokenText(const QString& text) {
    return QString(text).replace(u" · "_s, u", "_s);
}

void installAccessibleFigures() {
    QAccessible::installFactory(figureInterface);  // which Qt keeps once
}

void installAccessibleButtons() {
    QAccessible::installFactory(buttonInterface);  // which Qt keeps once
}

}  // namespace tallowcrest
