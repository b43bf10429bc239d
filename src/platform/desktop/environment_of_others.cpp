#include "platform/desktop/environment_of_others.h"

#include <QString>

#include "platform/base/environment.h"

namespace tallowcrest::desktop {

QProcessEnvironment environmentOfOthers() {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* variable : activationVariables) {
        environment.remove(QString::fromLatin1(variable));
    }
    return environment;
}

}  // namespace tallowcrest::desktop
