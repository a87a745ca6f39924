#include "core/app/ChatGeneration.h"

#include <QTextBoundaryFinder>

using namespace Qt::StringLiterals;

namespace {

constexpr int titleLength = 40;
// Code units, since a character may have any number of them.
constexpr qsizetype longestTitle = 1000;
constexpr double nanosecondsPerSecond = 1'000'000'000;

constexpr auto userRole = "user"_L1;
constexpr auto assistantRole = "assistant"_L1;

} // namespace

QString ChatGeneration::titleFrom(const QString &text)
{
    const QString start = text.left(longestTitle);
    QTextBoundaryFinder boundaries(QTextBoundaryFinder::Grapheme, start);
    for (int i = 0; i < titleLength; ++i) {
        if (boundaries.toNextBoundary() < 0)
            return start;
    }
    return start.left(boundaries.position());
}

QList<ChatRequestMessage> ChatGeneration::requestMessages(const Conversation &conversation,
                                                          const ModelSettings &settings)
{
    QList<ChatRequestMessage> messages;
    if (!settings.systemPrompt.trimmed().isEmpty())
        messages.append({u"system"_s, settings.systemPrompt});
    for (const ChatMessage &message : conversation.messages) {
        const QString content = message.role == userRole ? message.content : message.parsed().answer;
        if (message.role != assistantRole || !content.isEmpty())
            messages.append({message.role, content});
    }
    return messages;
}

QJsonObject ChatGeneration::options(const ModelSettings &settings)
{
    return {{u"temperature"_s, settings.temperature},
            {u"top_p"_s, settings.topP},
            {u"num_ctx"_s, settings.numCtx}};
}

QJsonValue ChatGeneration::keepAliveValue(int minutes)
{
    return minutes >= 1 ? QJsonValue(QString::number(minutes) + u'm') : QJsonValue(minutes);
}

ChatRequest ChatGeneration::request(const Conversation &conversation, const ModelSettings &settings,
                                    const QStringList &capabilities)
{
    ChatRequest request;
    request.model = conversation.model;
    request.messages = requestMessages(conversation, settings);
    request.options = options(settings);
    if (capabilities.contains("thinking"_L1))
        request.think = conversation.think;
    request.keepAlive = keepAliveValue(settings.keepAliveMinutes);
    return request;
}

void ChatGeneration::apply(const ChatChunk &chunk, ChatMessage &reply)
{
    reply.content += chunk.content;
    reply.thinking += chunk.thinking;
    if (chunk.done && chunk.evalDuration >= 1 && chunk.evalCount >= 1) {
        const double seconds = static_cast<double>(chunk.evalDuration) / nanosecondsPerSecond;
        reply.tokensPerSecond = static_cast<double>(chunk.evalCount) / seconds;
    }
}

bool ChatGeneration::isEmptyReply(const ChatMessage &message)
{
    return message.role == assistantRole && message.content.isEmpty() && message.thinking.isEmpty();
}
