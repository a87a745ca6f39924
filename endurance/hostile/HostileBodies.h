// What an engine that means harm says, in a sound frame.
#pragma once

#include "HostileServer.h"

#include <QRandomGenerator>
#include <QStringList>

namespace HostileBodies {

// Of one endpoint.
QStringList names(const QString &endpoint);
WireAnswer answer(const QString &endpoint, const QString &name, QRandomGenerator &random);

// What an engine would answer.
QByteArray sound(const QString &endpoint);

} // namespace HostileBodies
