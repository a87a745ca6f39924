#include "core/engine/ReleaseRecord.h"

#include "core/api/Fields.h"
#include "platform/error/SimpleError.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

std::optional<ReleaseAsset> assetNamed(const QString &name, const QByteArray &record)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(record, &error);
    if (error.error != QJsonParseError::NoError)
        throw SimpleError(error.errorString());
    for (const QJsonObject &asset : objectsField(document.object(), "assets"_L1)) {
        if (textField(asset, "name"_L1) != name)
            continue;
        const QUrl url(textField(asset, "browser_download_url"_L1), QUrl::StrictMode);
        if (url.isValid() && !url.isEmpty())
            return ReleaseAsset{url, integerField(asset, "size"_L1)};
    }
    return std::nullopt;
}
