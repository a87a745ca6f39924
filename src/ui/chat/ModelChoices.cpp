#include "ui/chat/ModelChoices.h"

#include <QCoreApplication>

ModelChoices ModelChoices::make(const InstalledIndex &installed, const QString &model)
{
    ModelChoices choices;
    choices.entries = installed.names();
    int current = static_cast<int>(installed.place(model));
    if (current < 0 || model.isEmpty()) {
        choices.hasExtra = true;
        choices.entries.prepend(
            model.isEmpty() ? QCoreApplication::translate("ModelChoices", "Choose a model") : model);
        current = 0;
    }
    choices.current = current;
    return choices;
}
