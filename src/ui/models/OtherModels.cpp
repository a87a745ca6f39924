#include "ui/models/OtherModels.h"

#include "core/models/ModelCatalog.h"

#include <QSet>

QStringList otherModelNames(const QList<InstalledModel> &installed, const QList<DownloadItem> &downloads)
{
    QSet<QString> taken;
    for (const CatalogModel &model : ModelCatalog::models())
        taken.insert(ModelCatalog::normalized(model.name));
    QStringList names;
    const auto add = [&](const QString &name) {
        const QString normalized = ModelCatalog::normalized(name);
        if (taken.contains(normalized))
            return;
        taken.insert(normalized);
        names.append(name);
    };
    for (const InstalledModel &model : installed)
        add(model.name);
    for (const DownloadItem &item : downloads)
        add(item.pullName);
    return names;
}
