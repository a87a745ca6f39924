// The environment of a child process: names and values as the bytes that the system hands over.
#pragma once

#include <QByteArray>
#include <QMap>

using Environment = QMap<QByteArray, QByteArray>;

// The environment of this process, unchanged. Main thread.
Environment systemEnvironment();
