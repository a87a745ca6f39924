#include "core/models/InstalledIndex.h"

#include "core/models/ModelCatalog.h"

InstalledIndex::InstalledIndex(const QList<InstalledModel> &models) : m_models(models)
{
    m_names.reserve(models.size());
    m_places.reserve(models.size());
    for (const InstalledModel &model : models) {
        const QString normalized = ModelCatalog::normalized(model.name);
        if (!m_places.contains(normalized)) {
            m_places.insert(normalized, m_names.size());
            if (!ModelCatalog::has(normalized))
                m_namesBesideCatalog.append(model.name);
        }
        m_names.append(model.name);
    }
}

qsizetype InstalledIndex::place(const QString &name) const
{
    return m_places.value(ModelCatalog::normalized(name), -1);
}
