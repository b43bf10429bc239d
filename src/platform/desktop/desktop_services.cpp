#include "platform/desktop_services.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QString>

namespace tallowcrest::desktop {

void storeOnClipboard(const std::string& text) {
    QGuiApplication::clipboard()->setText(QString::fromStdString(text));
}

}  // namespace tallowcrest::desktop
