// However a body is cut into batches, the same lines come out, none holds a break, and every decoder copes
// with every one of them. The first byte says how the rest is cut.
#include "core/api/OllamaClient.h"
#include "core/api/WireFormat.h"
#include "platform/http/LineSplitter.h"

#include <QByteArrayList>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

QByteArrayList linesOf(const QByteArray &body, qsizetype piece)
{
    LineSplitter splitter;
    QByteArrayList lines;
    for (qsizetype start = 0; start < body.size(); start += piece) {
        splitter.append(body.mid(start, piece));
        while (const auto line = splitter.next())
            lines.append(line->toByteArray());
    }
    if (const auto line = splitter.rest())
        lines.append(line->toByteArray());
    return lines;
}

// Break by break, in the plainest words.
QByteArrayList plainLinesOf(QByteArray body)
{
    body.replace("\r\n", "\n").replace('\r', '\n');
    QByteArrayList lines = body.split('\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

void decode(const QByteArray &bytes)
{
    const auto error = OllamaClient::parseError(bytes);
    const auto pull = WireFormat::pullLine(bytes);
    const auto chat = WireFormat::chatLine(bytes);
    // Whether a text is an object does not depend on what is read of it.
    if (pull.has_value() != chat.has_value() || (error && (!pull || pull->error != error)))
        std::abort();
    WireFormat::modelDetails(bytes);
    WireFormat::installedModels(bytes);
    WireFormat::loadedModels(bytes);
    WireFormat::version(bytes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray body(reinterpret_cast<const char *>(data + 1), static_cast<qsizetype>(size - 1));
    const QByteArrayList lines = linesOf(body, std::max<qsizetype>(data[0], 1));
    if (lines != plainLinesOf(body))
        std::abort();
    for (const QByteArray &line : lines)
        decode(line);
    decode(body);
    return 0;
}
