#include "core/chat/ChatMessage.h"

using namespace Qt::StringLiterals;

namespace {

constexpr auto openingTag = "<think>"_L1;
constexpr auto closingTag = "</think>"_L1;

void addReasoning(QString &reasoning, QStringView piece)
{
    const QStringView trimmed = piece.trimmed();
    if (trimmed.isEmpty())
        return;
    if (!reasoning.isEmpty())
        reasoning += "\n\n"_L1;
    reasoning += trimmed;
}

// Moves every block's inside from `content` to `reasoning` and returns what is left. The text on both sides
// of a block closes up and may spell a new tag; since no tag starts in what has been kept so far, such a tag
// ends where the kept text ends, so looking there suffices and nothing is searched twice.
QString withoutBlocks(const QString &content, QString &reasoning)
{
    if (!content.contains(openingTag))
        return content;
    const QStringView text(content);
    QString kept;
    kept.reserve(content.size());
    qsizetype read = 0;
    while (read < text.size()) {
        const qsizetype tagEnd = text.indexOf(u'>', read);
        const qsizetype end = tagEnd < 0 ? text.size() : tagEnd + 1;
        kept += text.sliced(read, end - read);
        read = end;
        if (!kept.endsWith(openingTag))
            continue;
        kept.chop(openingTag.size());
        const qsizetype close = text.indexOf(closingTag, read);
        if (close < 0) {
            addReasoning(reasoning, text.sliced(read));
            break;
        }
        addReasoning(reasoning, text.sliced(read, close - read));
        read = close + closingTag.size();
    }
    return kept;
}

} // namespace

ChatMessage ChatMessage::make(const QString &role, const QString &content)
{
    return {QUuid::createUuid(), role, content, {}, {}, QDateTime::currentDateTimeUtc()};
}

ParsedMessage ChatMessage::parsed() const
{
    ParsedMessage result{thinking, {}};
    const QString rest = withoutBlocks(content, result.thinking);
    QStringView answer(rest);
    // A template that opens the block itself leaves a closing tag alone in the text.
    if (const qsizetype stray = answer.indexOf(closingTag); stray >= 0) {
        addReasoning(result.thinking, answer.first(stray));
        answer = answer.sliced(stray + closingTag.size());
    }
    result.answer = answer.trimmed().toString();
    return result;
}
