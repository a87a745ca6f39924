// The installed models in the engine's order, with what is asked of them looked up rather than searched for:
// an engine may tell of tens of thousands. Making one takes time in proportion to their number; any thread.
#pragma once

#include "core/api/InstalledModel.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

class InstalledIndex
{
public:
    InstalledIndex() = default;
    explicit InstalledIndex(const QList<InstalledModel> &models);

    const QList<InstalledModel> &models() const { return m_models; }
    // As the engine writes them, one for each model of the list.
    const QStringList &names() const { return m_names; }
    // Those that the catalogue does not have, each model once.
    const QStringList &namesBesideCatalog() const { return m_namesBesideCatalog; }
    // Where the first model is whose name has the same normalised form, or -1.
    qsizetype place(const QString &name) const;

    // Looks at the models only when it is not a copy.
    bool operator==(const InstalledIndex &other) const { return m_models == other.m_models; }

private:
    QList<InstalledModel> m_models;
    QStringList m_names;
    QStringList m_namesBesideCatalog;
    QHash<QString, qsizetype> m_places; // by their normalised names
};
