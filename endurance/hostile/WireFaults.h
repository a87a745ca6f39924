// The ways in which an answer can be wrong on the wire, whatever it says.
#pragma once

#include "HostileServer.h"

#include <QStringList>

namespace WireFaults {

QStringList names();

// `body` in the frame of that name; some leave no room for it.
WireAnswer answer(const QString &name, const QByteArray &body);

} // namespace WireFaults
