// The progress line of a running installation.
#pragma once

#include <QString>

#include <optional>

struct InstallStatus
{
    QString text;
    // Of the download, 0 to 1 and above when more arrives than was announced; absent while nobody knows.
    std::optional<double> fraction = {};
    // While the network is awaited; the other steps run to their end.
    bool cancellable = true;

    bool operator==(const InstallStatus &) const = default;
};

// The line while the latest release is asked for; `stalled` when no answer comes.
InstallStatus lookupStatus(bool stalled = false);

// The line for `received` bytes out of the `expected` that the server announced (none: 0 or below), else out
// of the `assetSize` of the release record, at `speed` bytes per second; `stalled` when none arrive any more.
InstallStatus downloadStatus(qint64 received, qint64 expected, qint64 assetSize, double speed,
                             bool stalled = false);
