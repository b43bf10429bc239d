#include "presentation/widgets/accessibility.h"

#include <QAccessibleWidget>
#include <QWidget>

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

void installAccessibleFigures() {
    static const bool installed = [] {
        QAccessible::installFactory(figureInterface);
        return true;
    }();
    static_cast<void>(installed);
}

}  // namespace tallowcrest
