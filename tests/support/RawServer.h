// A server whose answers are written byte for byte by the test, for what a well-behaved one never sends.
#pragma once

#include <QByteArray>
#include <QList>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>

#include <functional>
#include <utility>

class RawServer final : public QTcpServer
{
public:
    // Called with every whole request; answers through the socket, at once or later.
    using Handler = std::function<void(QTcpSocket &socket)>;

    explicit RawServer(Handler handler) : m_handler(std::move(handler))
    {
        if (!listen(QHostAddress::LocalHost))
            qFatal("No port to listen on: %s", qUtf8Printable(errorString()));
        connect(this, &QTcpServer::newConnection, this, [this] {
            QTcpSocket *const socket = nextPendingConnection();
            ++connections;
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { receive(*socket); });
            connect(socket, &QTcpSocket::disconnected, this, [this] { ++disconnections; });
        });
    }

    QUrl url(const QString &path = QStringLiteral("/")) const
    {
        return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(serverPort()).arg(path));
    }

    // Whole requests, head and body together, in order of arrival.
    QList<QByteArray> requests;
    int connections = 0;
    int disconnections = 0;

private:
    void receive(QTcpSocket &socket)
    {
        const QByteArray bytes = socket.peek(socket.bytesAvailable());
        const qsizetype headEnd = bytes.indexOf("\r\n\r\n") + 4;
        if (headEnd < 4)
            return;
        const QByteArray head = bytes.first(headEnd).toLower();
        const qsizetype mark = head.indexOf("content-length:");
        const qsizetype length =
            mark < 0 ? 0 : head.sliced(mark + 15).split('\r').first().trimmed().toLongLong();
        if (bytes.size() < headEnd + length)
            return;
        requests.append(socket.read(headEnd + length));
        m_handler(socket);
    }

    Handler m_handler;
};
