#include "core/api/NetworkFailure.h"

#include "core/api/OllamaError.h"
#include "platform/http/TransportError.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

// The engine's words are those of Go's net packages, and its own for a part that it has tried too often.
bool isOfNetwork(const QString &message)
{
    constexpr std::array words{"max retries exceeded"_L1, "dial tcp"_L1,
                               "connection reset"_L1,     "broken pipe"_L1,
                               "i/o timeout"_L1,          "tls handshake timeout"_L1,
                               "unexpected eof"_L1,       "network is unreachable"_L1,
                               "no such host"_L1,         "deadline exceeded"_L1,
                               "client.timeout"_L1,       "server misbehaving"_L1};
    const QString lower = message.toLower();
    return std::ranges::any_of(words, [&](QLatin1StringView word) { return lower.contains(word); });
}

} // namespace

bool isNetworkFailure(const std::exception_ptr &error)
{
    using Code = TransportError::Code;
    try {
        std::rethrow_exception(error);
    } catch (const TransportError &transport) {
        const Code code = transport.code();
        return code == Code::notConnectedToInternet || code == Code::connectionLost ||
               code == Code::cannotFindHost || code == Code::timedOut;
    } catch (const OllamaError &engine) {
        return engine.kind() == OllamaError::Kind::api && isOfNetwork(engine.message());
    } catch (...) {
        return false;
    }
}
