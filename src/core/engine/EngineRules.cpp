#include "core/engine/EngineRules.h"

#include <QFile>
#include <QRegularExpression>

#include <utility>

using namespace Qt::StringLiterals;

QStringList engineCandidates(const std::optional<QString> &chosenByHand, const QStringList &installPlaces,
                             const std::optional<QString> &installedByUs,
                             const std::optional<QString> &foundInOurFolder)
{
    QStringList candidates;
    if (chosenByHand)
        candidates << *chosenByHand;
    candidates << installPlaces;
    if (installedByUs)
        candidates << *installedByUs;
    if (foundInOurFolder)
        candidates << *foundInOurFolder;
    return candidates;
}

Environment engineEnvironment(Environment base, int port, bool shareOnNetwork, const QString &modelsDir)
{
    const QByteArray interface = shareOnNetwork ? "0.0.0.0:" : "127.0.0.1:";
    base["OLLAMA_HOST"] = interface + QByteArray::number(port);
    base["OLLAMA_MODELS"] = QFile::encodeName(modelsDir);
    return base;
}

QStringList logWith(QStringList lines, const QString &output)
{
    constexpr qsizetype keptLines = 80;
    static const QRegularExpression lineEnd(u"[\r\n]"_s);
    lines += output.split(lineEnd, Qt::SkipEmptyParts);
    if (lines.size() > keptLines)
        lines.remove(0, lines.size() - keptLines);
    return lines;
}

bool mentionsTakenPort(const QStringList &lines)
{
    const QString text = lines.join(u'\n').toLower();
    return text.contains("address already in use"_L1) || text.contains("only one usage"_L1);
}
