// What the client's streams and tasks bring, read to their end, and how they fail in the user's words.
#pragma once

#include "core/api/Friendly.h"
#include "core/api/OllamaClient.h"
#include "support/Waiting.h"

struct ChatAnswer
{
    QString text;
    int records = 0;
    ChatChunk last;
    QString failure; // as the user reads it
};

inline Task<ChatAnswer> readChat(Stream<ChatChunk> stream)
{
    ChatAnswer answer;
    try {
        while (const std::optional<ChatChunk> chunk = co_await stream.next()) {
            answer.text += chunk->content;
            answer.last = *chunk;
            ++answer.records;
        }
    } catch (...) {
        answer.failure = Friendly::message(std::current_exception());
    }
    co_return answer;
}

inline Task<QStringList> readPull(Stream<PullProgress> stream)
{
    QStringList statuses;
    while (const std::optional<PullProgress> progress = co_await stream.next())
        statuses.append(progress->status);
    co_return statuses;
}

template <class T>
Task<std::optional<T>> firstOf(Stream<T> *stream)
{
    co_return co_await stream->next();
}

// Waits for the task; empty when it ends well.
template <class T>
QString failureOf(Task<T> task)
{
    try {
        ::waitFor(std::move(task));
    } catch (...) {
        return Friendly::message(std::current_exception());
    }
    return {};
}
