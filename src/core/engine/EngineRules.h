// What the engine manager decides from values alone.
#pragma once

#include "core/engine/Environment.h"

#include <QString>
#include <QStringList>

#include <optional>

// Where the engine program is looked for, the preferred place first: chosen by hand, installed for the whole
// machine, installed by this program, found in the folder of its installations.
QStringList engineCandidates(const std::optional<QString> &chosenByHand, const QStringList &installPlaces,
                             const std::optional<QString> &installedByUs,
                             const std::optional<QString> &foundInOurFolder);

// `base` with what makes the engine serve on `port` and keep its models in `modelsDir`.
Environment engineEnvironment(Environment base, int port, bool shareOnNetwork, const QString &modelsDir);

// `lines` with the lines of `output` behind them, empty ones dropped; of all these, the last 80.
QStringList logWith(QStringList lines, const QString &output);

// Whether an engine that wrote `lines` complained about a port that is in use.
bool mentionsTakenPort(const QStringList &lines);
