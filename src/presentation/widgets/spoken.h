#pragma once

#include <QString>

class QWidget;

namespace tallowcrest {

/// What assistive technology reads of a widget. Qt announces its name and description whenever they
/// are set, so only words that differ from those of before are handed on: what is refreshed with
/// each sample can call these each time. Main thread.
void setSpokenName(QWidget& widget, const QString& name);
void setSpokenDescription(QWidget& widget, const QString& description);

}  // namespace tallowcrest
