// Any text splits into reasoning and answer exactly as the slow reference splits it. So that the interesting
// cases are met soon, the letters A to H stand for the tags and their halves; a zero byte ends the reasoning
// that came apart from the text.
#include "support/ReferenceParsed.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

QString expanded(const QByteArray &bytes)
{
    static const char *const pieces[] = {"<think>", "</think>", "<thi", "nk>",
                                         "</th",    "ink>",     "\n",   "\xE2\x80\x83"};
    QByteArray text;
    for (const char byte : bytes) {
        if (byte >= 'A' && byte <= 'H')
            text += pieces[byte - 'A'];
        else
            text += byte;
    }
    return QString::fromUtf8(text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const qsizetype border = input.indexOf('\0');
    ChatMessage message;
    message.thinking = expanded(border < 0 ? QByteArray() : input.first(border));
    message.content = expanded(input.sliced(border + 1));
    if (message.parsed() != referenceParsed(message))
        std::abort();
    return 0;
}
