#include "tests/presentation/shell/operations.h"

#include <climits>

#include <QAbstractItemView>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

void clickOn(QAccessibleInterface& control) {
    if (auto* widget = qobject_cast<QWidget*>(control.object())) {
        QTest::mouseClick(widget, Qt::LeftButton);
        return;
    }
    const auto* view = qobject_cast<QAbstractItemView*>(control.parent()->object());
    ASSERT_NE(view, nullptr) << control.text(QAccessible::Name).toStdString();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier,
                      view->viewport()->mapFromGlobal(control.rect().center()));
}

Operation step(const QString& name, Qt::Key key, int direction) {
    return {name,
            [key](QAccessibleInterface& slider) {
                QTest::keyClick(qobject_cast<QWidget*>(slider.object()), key);
            },
            [direction](QAccessibleInterface& slider) {
                QAccessibleValueInterface& value = *slider.valueInterface();
                value.setCurrentValue(value.currentValue().toDouble() +
                                      direction * value.minimumStepSize().toDouble());
            }};
}

Operation replaceText() {
    const QString typed = u"editor"_s;
    // The field is left, which enters what was typed.
    const auto inField = [](QAccessibleInterface& spoken, const auto& enter) {
        auto* field = qobject_cast<QWidget*>(spoken.object());
        field->setFocus();
        enter(*field);
        QTest::keyClick(field, Qt::Key_Tab);
    };
    return {u"replace the text"_s,
            [=](QAccessibleInterface& spoken) {
                inField(spoken, [&](QWidget& field) {
                    QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
                    QTest::keyClicks(&field, typed);
                });
            },
            [=](QAccessibleInterface& spoken) {
                inField(spoken, [&](const QWidget&) {
                    // A field for a secret does not tell its text.
                    QAccessibleTextInterface* const text = spoken.textInterface();
                    spoken.editableTextInterface()->replaceText(
                        0, text != nullptr ? text->characterCount() : INT_MAX, typed);
                });
            }};
}

}  // namespace

std::vector<Operation> operationsOf(QAccessibleInterface& control) {
    std::vector<Operation> found;
    if (control.role() == QAccessible::Slider) {
        found = {step(u"increase"_s, Qt::Key_Right, 1), step(u"decrease"_s, Qt::Key_Left, -1)};
    }
    if (control.editableTextInterface() != nullptr) {
        found.push_back(replaceText());
    }
    if (QAccessibleActionInterface* offered = control.actionInterface()) {
        for (const QString& name : offered->actionNames()) {
            if (name != QAccessibleActionInterface::setFocusAction()) {
                found.push_back({name, clickOn, [name](QAccessibleInterface& spoken) {
                                     spoken.actionInterface()->doAction(name);
                                 }});
            }
        }
    }
    return found;
}

}  // namespace tallowcrest
