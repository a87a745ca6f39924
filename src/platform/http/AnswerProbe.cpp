#include "platform/http/AnswerProbe.h"

#include <QNetworkProxy>

#include <chrono>
#include <utility>

using namespace std::chrono_literals;

AnswerProbe::AnswerProbe(const QUrl &url, std::function<void(bool)> report, QObject *parent)
    : QObject(parent), m_report(std::move(report))
{
    connect(&m_socket, &QTcpSocket::readyRead, this, [this] { look(false); });
    connect(&m_socket, &QTcpSocket::errorOccurred, this, [this] { look(true); });
    connect(&m_patience, &QTimer::timeout, this, [this] { look(true); });
    m_patience.start(2s);

    const QByteArray path = url.path(QUrl::FullyEncoded).toLatin1();
    const QByteArray host = url.authority(QUrl::FullyEncoded | QUrl::RemoveUserInfo).toLatin1();
    m_socket.setProxy(QNetworkProxy::NoProxy);
    m_socket.connectToHost(url.host(), static_cast<quint16>(url.port(80)));
    m_socket.write("GET " + (path.isEmpty() ? "/" : path) + " HTTP/1.1\r\nHost: " + host +
                   "\r\nConnection: close\r\n\r\n");
}

void AnswerProbe::look(bool ended)
{
    static const QByteArray mark = QByteArrayLiteral("HTTP/");
    const QByteArray start = m_socket.peek(mark.size());
    const bool isHttp = mark.startsWith(start);
    if (isHttp && start.size() < mark.size() && !ended)
        return;
    m_patience.stop();
    if (const auto report = std::exchange(m_report, {}))
        report(!isHttp);
}
