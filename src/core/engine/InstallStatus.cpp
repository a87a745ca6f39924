#include "core/engine/InstallStatus.h"

#include "core/models/Fmt.h"
#include "platform/text/ByteCount.h"

#include <QCoreApplication>

#include <cmath>

namespace {

const QString separator = QStringLiteral(" \u00B7 ");

} // namespace

InstallStatus lookupStatus(bool stalled)
{
    const QString line = QCoreApplication::translate("InstallStatus", "Looking up the latest Ollama…");
    return {stalled ? line + separator + Fmt::waiting() : line};
}

InstallStatus downloadStatus(qint64 received, qint64 expected, qint64 assetSize, double speed, bool stalled)
{
    const qint64 total = expected > 0 ? expected : assetSize;
    const QString amounts = QCoreApplication::translate("InstallStatus", "%1 of %2")
                                .arg(byteCountText(received), byteCountText(total));
    InstallStatus status{amounts};
    if (total >= 1) {
        status.fraction = static_cast<double>(received) / static_cast<double>(total);
        const QString percent = QString::number(std::trunc(*status.fraction * 100), 'f', 0);
        status.text = QCoreApplication::translate("InstallStatus", "%1% \u00B7 %2").arg(percent, amounts);
    }
    if (stalled)
        status.text += separator + Fmt::waiting();
    else if (speed > 0)
        status.text += separator + Fmt::speed(speed);
    return status;
}
