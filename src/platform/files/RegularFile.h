// Reading a file that stands where anybody's programs may have put something else: a pipe that would never
// end, a device, a file without measure.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// The whole content of the regular file at `path`, or of the one a link there leads to. Nothing when there is
// none, when it cannot be read as a whole or holds more than `limit` bytes. Never waits for another program.
// Any thread.
std::optional<QByteArray> readRegularFile(const QString &path, qint64 limit);
