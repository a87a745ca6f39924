// A running request: its head once that has arrived, then its body in batches as they arrive. Main thread
// only. Dropping it stops the transfer.
#pragma once

#include "platform/async/Stop.h"
#include "platform/async/Task.h"

#include <QByteArray>

#include <memory>
#include <utility>

class HttpExchange;

struct HttpHead
{
    // 0 when the server answered with something that is not HTTP.
    int status = 0;
    // Bytes of the body as announced, -1 when unknown.
    qint64 contentLength = -1;

    bool operator==(const HttpHead &) const = default;
};

// Await one call before making the next. A call still waiting when the transfer is dropped fails as
// cancelled.
class HttpTransfer
{
public:
    ~HttpTransfer();
    HttpTransfer(HttpTransfer &&) noexcept = default;
    HttpTransfer &operator=(HttpTransfer &&) = delete;

    // The head of the answer; of the last one where redirects are followed. Throws TransportError.
    Task<HttpHead> head() const;

    // What has arrived of the body and was not read yet, at least one byte and at most `limit`; -1 is no
    // limit. Empty at the end. Throws TransportError, behind the bytes that came before the failure.
    Task<QByteArray> read(qint64 limit = -1) const;

    // The rest of the body, or its first `limit` bytes; -1 is no limit. Throws TransportError.
    Task<QByteArray> readAll(qint64 limit = -1) const;

private:
    friend class HttpClient;
    explicit HttpTransfer(std::shared_ptr<HttpExchange> exchange) : m_exchange(std::move(exchange)) {}

    std::shared_ptr<HttpExchange> m_exchange;
};
