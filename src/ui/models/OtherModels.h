// Which models are listed beside those of the catalogue.
#pragma once

#include "core/models/DownloadItem.h"
#include "core/models/InstalledIndex.h"

#include <QList>
#include <QStringList>

// The names of installed models, then of downloads, that are not in the catalogue: each model once, in the
// form in which it was met first.
QStringList otherModelNames(const InstalledIndex &installed, const QList<DownloadItem> &downloads);
