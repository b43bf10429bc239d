#include "presentation/screens/shared/command_button.h"

#include "presentation/widgets/button.h"

namespace tallowcrest {

QPushButton* makeButton(const Command& command, const QString& identifier, QWidget* parent) {
    return makeButton(QString::fromUtf8(command.title), QString::fromUtf8(command.icon), identifier,
                      QString::fromUtf8(command.description), parent);
}

}  // namespace tallowcrest
