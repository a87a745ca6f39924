// Which models are listed beside those of the catalogue.
#pragma once

#include "core/api/InstalledModel.h"
#include "core/models/DownloadItem.h"

#include <QList>
#include <QStringList>

// The names of installed models, then of downloads, that are not in the catalogue: each model once, in the
// form in which it was met first.
QStringList otherModelNames(const QList<InstalledModel> &installed, const QList<DownloadItem> &downloads);
