#include "core/engine/EngineVersion.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

QString shownVersion(const QString &told)
{
    static const QRegularExpression ofProgram(u"client version is (\\d\\S*)"_s);
    static const QRegularExpression ofServer(u"version is (\\d\\S*)"_s);
    for (const QRegularExpression &number : {ofProgram, ofServer}) {
        if (const auto match = number.match(told); match.hasMatch())
            return match.captured(1);
    }
    return told;
}
