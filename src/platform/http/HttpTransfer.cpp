#include "platform/http/HttpTransfer.h"

#include "platform/http/HttpExchange.h"

#include <limits>

namespace {

Task<HttpHead> headOf(std::shared_ptr<HttpExchange> exchange)
{
    for (;;) {
        const std::optional<HttpHead> head = exchange->head();
        if (head)
            co_return *head;
        const Completion<> change = exchange->nextChange();
        co_await change.wait();
    }
}

Task<QByteArray> readFrom(std::shared_ptr<HttpExchange> exchange, qint64 limit)
{
    for (;;) {
        const QByteArray bytes = exchange->take(limit);
        if (!bytes.isEmpty() || exchange->isOver())
            co_return bytes;
        const Completion<> change = exchange->nextChange();
        co_await change.wait();
    }
}

constexpr qint64 everything = std::numeric_limits<qint64>::max();

Task<QByteArray> readAllFrom(std::shared_ptr<HttpExchange> exchange, qint64 limit)
{
    QByteArray all;
    while (all.size() < limit) {
        const QByteArray bytes = co_await readFrom(exchange, limit - all.size());
        if (bytes.isEmpty())
            break;
        all += bytes;
    }
    co_return all;
}

} // namespace

HttpTransfer::~HttpTransfer()
{
    if (m_exchange)
        m_exchange->fail(TransportError(TransportError::Code::cancelled));
}

Task<HttpHead> HttpTransfer::head() const
{
    return headOf(m_exchange);
}

Task<QByteArray> HttpTransfer::read(qint64 limit) const
{
    return readFrom(m_exchange, limit < 0 ? everything : limit);
}

Task<QByteArray> HttpTransfer::readAll(qint64 limit) const
{
    return readAllFrom(m_exchange, limit < 0 ? everything : limit);
}
