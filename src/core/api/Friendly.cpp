#include "core/api/Friendly.h"

#include "platform/error/Error.h"
#include "platform/http/TransportError.h"

using namespace Qt::StringLiterals;

QString Friendly::text(const QString &message)
{
    const QString lower = message.toLower();
    const auto holds = [&lower](QLatin1StringView piece) { return lower.contains(piece); };
    if (holds("no space left"_L1) || holds("disk full"_L1))
        return tr("Your disk is full. Free some space and try again.");
    if (holds("more system memory"_L1) || holds("out of memory"_L1) || holds("insufficient memory"_L1))
        return tr("This model needs more memory than your Mac has free. Try a smaller model or a shorter "
                  "context length.");
    if (holds("file does not exist"_L1) || (holds("not found"_L1) && holds("model"_L1)))
        return tr("I couldn't find a model with that name in the Ollama library.");
    return message;
}

QString Friendly::message(const std::exception_ptr &error)
{
    using Code = TransportError::Code;
    try {
        std::rethrow_exception(error);
    } catch (const TransportError &transport) {
        switch (transport.code()) {
        case Code::notConnectedToInternet:
        case Code::connectionLost:
        case Code::cannotFindHost:
            return tr("No network connection. Check your internet and try again.");
        case Code::timedOut:
            return tr("The request timed out. Please try again.");
        case Code::cannotConnect:
            return tr("I can't reach the local engine. Is the Local server switched on?");
        case Code::cancelled:
            return tr("Cancelled.");
        case Code::other:
            break;
        }
        return transport.description();
    } catch (...) {
        return text(errorDescription(std::current_exception()));
    }
}
