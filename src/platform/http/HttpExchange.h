// What a running transfer and those who wait for it share: the reply, the two time limits, and the one reason
// for which it ended.
#pragma once

#include "platform/async/Completion.h"
#include "platform/async/Stop.h"
#include "platform/http/AnswerProbe.h"
#include "platform/http/HttpRequest.h"
#include "platform/http/HttpTransfer.h"
#include "platform/http/TransportError.h"

#include <QElapsedTimer>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <chrono>
#include <exception>
#include <memory>
#include <optional>

class HttpExchange final : public QObject
{
public:
    // Asked to stop by `stop` and by quitting.
    static std::shared_ptr<HttpExchange> create(const StopToken &stop);
    ~HttpExchange() override;

    // Takes over `reply`, which has just been sent, with the limits of `request`.
    void run(QNetworkReply *reply, const HttpRequest &request);

    // The first end counts; the transfer stops.
    void fail(const TransportError &error);

    // Absent until the head has arrived. Throws what the transfer failed with before.
    std::optional<HttpHead> head() const;
    // At most `limit` bytes, none when nothing has arrived. Throws what the transfer failed with when there
    // is nothing in front of the failure.
    QByteArray take(qint64 limit);
    bool isOver() const { return m_over; }

    // Completes when anything of the above may have changed. One waiter at a time.
    const Completion<> &nextChange();

private:
    HttpExchange() = default;

    void onHead();
    void onBytes();
    void onFinished();
    void onQuiet();
    void conclude(bool notHttp);
    void letGo();
    void announce();

    QPointer<QNetworkReply> m_reply;
    QTimer m_idle;
    QTimer m_limit;
    bool m_followsRedirects = true;
    std::chrono::milliseconds m_idleTimeout{};
    QElapsedTimer m_quiet;
    std::optional<HttpHead> m_head;
    std::exception_ptr m_error;
    bool m_over = false;
    bool m_dropped = false; // bytes that arrived do not count any more
    Completion<> m_change;
    std::optional<AnswerProbe> m_probe;
    std::optional<StopCallback> m_onStop;
    std::optional<StopCallback> m_onQuit;
};
