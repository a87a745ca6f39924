// What the user reads when a launch ends without a window.
#pragma once

#include "platform/instance/SingleInstance.h"

#include <QString>

namespace LaunchFailure {

// No folder to keep anything in is known.
QString noHome();
// Why `claim`, which neither gave the profile nor was handed over, ends the launch.
QString sentence(const SingleInstance::Claim &claim);

// Writes `sentence` to standard error and shows it in a dialog until the user closes it or a signal asks the
// program to end. Returns the exit code, which is not 0. Runs the event loop.
int show(const QString &sentence);

} // namespace LaunchFailure
