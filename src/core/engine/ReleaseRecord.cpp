#include "core/engine/ReleaseRecord.h"

#include "core/api/Fields.h"
#include "platform/error/SimpleError.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

// "sha256:" and 64 digits. Whatever else may stand there one day is no reason to refuse the file.
QByteArray sha256In(const QString &digest)
{
    constexpr auto kind = "sha256:"_L1;
    if (!digest.startsWith(kind))
        return {};
    const QByteArray digits = digest.sliced(kind.size()).toLatin1().toLower();
    const QByteArray sum = QByteArray::fromHex(digits);
    const bool isWhole = sum.size() == QCryptographicHash::hashLength(QCryptographicHash::Sha256);
    return isWhole && sum.toHex() == digits ? sum : QByteArray();
}

} // namespace

std::optional<ReleaseAsset> assetNamed(const QString &name, const QByteArray &record)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(record, &error);
    if (error.error != QJsonParseError::NoError)
        throw SimpleError(QCoreApplication::translate("EngineInstaller",
                                                      "GitHub's answer could not be read (%1). Try "
                                                      "again later, or choose Ollama manually.")
                              .arg(error.errorString()));
    for (const QJsonObject &asset : objectsField(document.object(), "assets"_L1)) {
        if (textField(asset, "name"_L1) != name)
            continue;
        const QUrl url(textField(asset, "browser_download_url"_L1), QUrl::StrictMode);
        if (url.isValid() && !url.isEmpty())
            return ReleaseAsset{url, integerField(asset, "size"_L1), sha256In(textField(asset, "digest"_L1))};
    }
    return std::nullopt;
}
