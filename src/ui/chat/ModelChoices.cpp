#include "ui/chat/ModelChoices.h"

#include "core/models/ModelCatalog.h"

#include <QCoreApplication>

ModelChoices ModelChoices::make(const QList<InstalledModel> &installed, const QString &model)
{
    ModelChoices choices;
    int current = -1;
    const QString normalized = ModelCatalog::normalized(model);
    for (const InstalledModel &entry : installed) {
        if (current < 0 && ModelCatalog::normalized(entry.name) == normalized)
            current = static_cast<int>(choices.entries.size());
        choices.entries.append(entry.name);
    }
    if (current < 0 || model.isEmpty()) {
        choices.hasExtra = true;
        choices.entries.prepend(
            model.isEmpty() ? QCoreApplication::translate("ModelChoices", "Choose a model") : model);
        current = 0;
    }
    choices.current = current;
    return choices;
}
