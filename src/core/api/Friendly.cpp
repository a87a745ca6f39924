#include "core/api/Friendly.h"

#include "platform/error/Error.h"
#include "platform/http/TransportError.h"

#include <algorithm>
#include <initializer_list>

using namespace Qt::StringLiterals;

namespace {

// What to do about those of the engine's messages that say something, but not that. They stand behind it.
QString modelStopped()
{
    return Friendly::tr("The model stopped unexpectedly. Try again; if it happens again, try a smaller model "
                        "or a shorter context length. The engine says:");
}

QString cannotChat()
{
    return Friendly::tr(
        "This model cannot chat, or a part of it is missing. Choose another one, or delete it "
        "and download it again. The engine says:");
}

QString failedSilently()
{
    return Friendly::tr("The engine failed and gave no reason. Try again; if it happens with one model only, "
                        "delete that model and download it again. The engine says:");
}

// Nothing when the message needs none.
QString adviceFor(const QString &lower)
{
    const auto holds = [&lower](QLatin1StringView piece) { return lower.contains(piece); };
    if ((holds("running the model"_L1) && holds("unexpected eof"_L1)) || holds("process has terminated"_L1) ||
        holds("terminated with exit code"_L1))
        return modelStopped();
    if (holds("does not support chat"_L1))
        return cannotChat();
    return lower == Friendly::withoutReason(500).toLower() ? failedSilently() : QString();
}

bool hasAdvice(const QString &message)
{
    return message.startsWith(modelStopped()) || message.startsWith(cannotChat()) ||
           message.startsWith(failedSilently());
}

} // namespace

QString Friendly::text(const QString &message)
{
    if (hasAdvice(message))
        return message;
    const QString lower = message.toLower();
    const auto holds = [&lower](QLatin1StringView piece) { return lower.contains(piece); };
    const auto holdsOneOf = [&holds](std::initializer_list<QLatin1StringView> pieces) {
        return std::ranges::any_of(pieces, holds);
    };
    if (holdsOneOf({"no space left"_L1, "disk full"_L1}))
        return tr("Your disk is full. Free some space and try again.");
    // The last two are how the system's own killer looks.
    if (holdsOneOf({"more system memory"_L1, "out of memory"_L1, "insufficient memory"_L1, "out-of-memory"_L1,
                    "failed to allocate"_L1, "signal: killed"_L1, "exit status 137"_L1}))
        return tr("This model needs more memory than your Mac has free. Try a smaller model or a shorter "
                  "context length.");
    if (holds("file does not exist"_L1) || (holds("not found"_L1) && holds("model"_L1)))
        return tr("I couldn't find a model with that name in the Ollama library.");
    const QString advice = adviceFor(lower);
    return advice.isEmpty() ? message : advice + u' ' + message;
}

QString Friendly::withoutReason(int status)
{
    return tr("The engine answered with error %1.").arg(status);
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
