// Finds out whether what answers at an address speaks HTTP: Qt reports an answer in anything else as a
// connection that was closed.
#pragma once

#include <QObject>
#include <QTcpSocket>
#include <QTimer>
#include <QUrl>

#include <functional>

class AnswerProbe final : public QObject
{
public:
    // Asks `url` (http, reached without a proxy) once more, as a plain GET, and calls `report` with whether
    // an answer came that is not HTTP. Without an answer within two seconds there was none.
    AnswerProbe(const QUrl &url, std::function<void(bool notHttp)> report, QObject *parent = nullptr);

private:
    void look(bool ended);

    std::function<void(bool)> m_report;
    QTcpSocket m_socket;
    QTimer m_patience;
};
