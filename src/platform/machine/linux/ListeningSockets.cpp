#include "platform/machine/linux/ListeningSockets.h"

#include "platform/machine/Machine.h"

#include <QByteArrayList>
#include <QFile>

#include <netinet/in.h>

using namespace Qt::StringLiterals;

namespace {

// As the tables have it: the bytes in network order, four at a time read as a number.
QByteArray hexWord(quint32 bytesInNetworkOrder)
{
    return QByteArray::number(bytesInNetworkOrder, 16).rightJustified(8, '0').toUpper();
}

// The user in the first row whose socket listens on the address and port in `local`.
std::optional<uid_t> listenerOn(const QByteArray &local, const QByteArray &table)
{
    const QByteArrayList rows = table.split('\n');
    for (const QByteArray &row : rows) {
        // "number: local remote state queues timer retransmissions user …"
        const QByteArrayList fields = row.simplified().split(' ');
        const bool listens = fields.value(3) == "0A";
        bool isNumber = false;
        const uid_t user = fields.value(7).toUInt(&isNumber);
        if (listens && isNumber && fields.value(1) == local)
            return user;
    }
    return std::nullopt;
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

std::optional<uid_t> listenerIn(const QByteArray &tcp, const QByteArray &tcp6, int port)
{
    const QByteArray loopback = hexWord(htonl(INADDR_LOOPBACK));
    const QByteArray any = hexWord(0);
    const QByteArray mapped = any + any + hexWord(htonl(0xFFFF));
    const QByteArray onPort = ':' + QByteArray::number(port, 16).rightJustified(4, '0').toUpper();
    for (const auto &[address, table] :
         {std::pair(loopback, tcp), std::pair(mapped + loopback, tcp6), std::pair(any, tcp),
          std::pair(mapped + any, tcp6), std::pair(any + any + any + any, tcp6)}) {
        if (const auto user = listenerOn(address + onPort, table))
            return user;
    }
    return std::nullopt;
}

std::optional<uid_t> listeningUser(int port)
{
    return listenerIn(contentOf(u"/proc/net/tcp"_s), contentOf(u"/proc/net/tcp6"_s), port);
}
