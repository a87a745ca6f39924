#include "platform/http/Loopback.h"

#include <QHostAddress>

using namespace Qt::StringLiterals;

bool isLoopback(const QString &host)
{
    return host.compare("localhost"_L1, Qt::CaseInsensitive) == 0 || QHostAddress(host).isLoopback();
}
