// What the installer takes for granted: the release service, the file made for this system, and the tool that
// unpacks it. A test hands in its own.
#pragma once

#include "core/models/StallWatch.h"

#include <QString>
#include <QStringList>
#include <QUrl>

#include <chrono>

struct InstallerOptions
{
    QUrl releaseService{QStringLiteral("https://api.github.com")};
    // The release file for this system and processor, and the sentence for a release without it.
    QString assetName = standardAssetName();
    QString missingAsset = standardMissingAsset();
    // Called with the switches, the archive, "-C" and the folder to unpack into.
    QString archiveTool = QStringLiteral("/usr/bin/tar");
    QStringList unpackSwitches = standardUnpackSwitches();
    // How long the two servers may stay silent.
    std::chrono::milliseconds lookupTimeout{20'000};
    std::chrono::milliseconds downloadTimeout{60'000};
    // How long they may before the user is told.
    std::chrono::milliseconds stallPatience = StallWatch::usualPatience;

    static QString standardAssetName();
    static QString standardMissingAsset();
    static QStringList standardUnpackSwitches();
};
