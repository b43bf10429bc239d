#pragma once

#include <functional>
#include <vector>

#include <QAccessible>
#include <QString>

namespace tallowcrest {

/// Something that can be done with a control: by pointer or keys, and by assistive technology.
struct Operation {
    QString name;
    std::function<void(QAccessibleInterface&)> byHand;
    std::function<void(QAccessibleInterface&)> byAction;
};

/// All but giving it the focus. Empty for what is not a control.
std::vector<Operation> operationsOf(QAccessibleInterface& control);

}  // namespace tallowcrest
