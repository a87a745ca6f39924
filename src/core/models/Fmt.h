// The texts of a download's progress line.
#pragma once

#include "core/models/DownloadItem.h"

#include <QCoreApplication>
#include <QString>

class Fmt
{
    Q_DECLARE_TR_FUNCTIONS(Fmt)

public:
    // `bytesPerSecond` as in "12.3 MB/s".
    static QString speed(double bytesPerSecond);
    // `seconds` as in "59 s left", "12 min left" or "1.5 h left".
    static QString eta(double seconds);
    // What stands in the place of the speed and the time left while nothing arrives.
    static QString waiting();
    // "12% · 50 bytes of 400 bytes", with the speed and the time left once they are known.
    static QString progress(const DownloadItem &item);
};
