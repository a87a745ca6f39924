// Every message has a sentence: itself, perhaps behind a fixed one that says what to do, or one of the fixed
// ones. The sentence of a sentence is itself, and
// the way by which a message arrives makes no difference.
#include "core/api/Friendly.h"
#include "core/api/OllamaError.h"
#include "platform/error/SimpleError.h"
#include "platform/http/TransportError.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

// Whether the message stands behind what is said about it in every case.
bool isAdvised(const QString &sentence, const QString &message)
{
    for (const char *const known :
         {"process has terminated", "does not support chat", "The engine answered with error 500."}) {
        const QString piece = QString::fromLatin1(known);
        if (sentence == Friendly::text(piece).chopped(piece.size()) + message)
            return true;
    }
    return false;
}

void check(const QString &message)
{
    const QString sentence = Friendly::text(message);
    if (Friendly::text(sentence) != sentence)
        std::abort();
    if (sentence != message && !isAdvised(sentence, message) &&
        sentence != Friendly::text(QStringLiteral("disk full")) &&
        sentence != Friendly::text(QStringLiteral("out of memory")) &&
        sentence != Friendly::text(QStringLiteral("file does not exist")))
        std::abort();
    if (Friendly::message(std::make_exception_ptr(SimpleError(message))) != sentence ||
        Friendly::message(std::make_exception_ptr(OllamaError::api(message))) != sentence)
        std::abort();
    const TransportError transport(TransportError::Code::other, message);
    if (Friendly::message(std::make_exception_ptr(transport)) != message)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    check(QString::fromUtf8(bytes));
    check(QString::fromLatin1(bytes));
    // Half characters included.
    QString units(bytes.size() / 2, QChar());
    std::memcpy(units.data(), bytes.constData(), static_cast<std::size_t>(units.size()) * 2);
    check(units);
    return 0;
}
