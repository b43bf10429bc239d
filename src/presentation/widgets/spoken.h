#pragma once

#include <QString>

class QWidget;

namespace tallowcrest {

/// Set the accessible name or description of a widget, only if it differs from the present one: Qt
/// announces every set text, and many are refreshed with each sample. Main thread.
void setSpokenName(QWidget& widget, const QString& name);
void setSpokenDescription(QWidget& widget, const QString& description);

}  // namespace tallowcrest
