// What comes of a request: the answer as far as it got, and why it did not get further.
#pragma once

#include "platform/http/HttpClient.h"
#include "platform/http/TransportError.h"
#include "support/Waiting.h"

struct HttpOutcome
{
    int status = -1;
    QByteArray body = {};
    std::optional<TransportError::Code> code = {};

    bool operator==(const HttpOutcome &) const = default;

    static HttpOutcome of(const HttpRequest &request)
    {
        HttpOutcome outcome;
        try {
            const HttpTransfer transfer = HttpClient::shared().start(request);
            outcome.status = ::waitFor(transfer.head()).status;
            for (QByteArray bytes = "-"; !bytes.isEmpty();) {
                bytes = ::waitFor(transfer.read());
                outcome.body += bytes;
            }
        } catch (const TransportError &error) {
            outcome.code = error.code();
        }
        return outcome;
    }
};

// For the report of a comparison that fails.
inline char *toString(const HttpOutcome &outcome)
{
    const QByteArray code = outcome.code ? QByteArray::number(static_cast<int>(*outcome.code)) : "well";
    return qstrdup((QByteArray::number(outcome.status) + ' ' + outcome.body + ' ' + code).constData());
}
