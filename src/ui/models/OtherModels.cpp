#include "ui/models/OtherModels.h"

#include "core/models/ModelCatalog.h"

QStringList otherModelNames(const InstalledIndex &installed, const QList<DownloadItem> &downloads)
{
    QStringList names = installed.namesBesideCatalog();
    for (const DownloadItem &item : downloads) {
        if (!ModelCatalog::has(item.pullName) && installed.place(item.pullName) < 0)
            names.append(item.pullName);
    }
    return names;
}
