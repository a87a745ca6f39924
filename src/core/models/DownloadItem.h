// One model that the user asked to download, as the screens show it.
#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>

struct DownloadItem
{
    struct Phase
    {
        enum Kind
        {
            queued,
            running,
            failed,
            cancelled
        };

        Kind kind = queued;
        QString message;    // why it failed, as the user reads it; empty in every other phase
        bool isCut = false; // it failed because the network did, so that the same pull may go on later

        bool operator==(const Phase &) const = default;
    };

    QString id;                           // the normalised model name
    QString pullName;                     // the name as the user gave it, trimmed; sent to the engine
    std::optional<qint64> knownSize = {}; // bytes to download as the catalogue says
    Phase phase = {};
    QString status = {};  // the engine's latest text on this pull
    qint64 total = 0;     // bytes of all layers seen so far
    qint64 completed = 0; // bytes received of them
    double speed = 0;     // smoothed, bytes per second; 0 while it does not run
    bool stalled = false; // it runs, and nothing has come for a while

    bool operator==(const DownloadItem &) const = default;
};
