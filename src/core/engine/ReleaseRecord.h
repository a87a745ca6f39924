// What the release service tells about the latest release of the engine.
#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <optional>

// One file of a release.
struct ReleaseAsset
{
    QUrl url;
    qint64 size = 0;        // bytes; 0 when the record does not say
    QByteArray sha256 = {}; // empty when the record gives none, or one of another kind

    bool operator==(const ReleaseAsset &) const = default;
};

// The first asset of `record` that is called `name` and has a usable address. Throws a SimpleError around
// the parser's words when the record is no JSON. Any thread.
std::optional<ReleaseAsset> assetNamed(const QString &name, const QByteArray &record);
