// One message of a conversation, and the split of its text into reasoning and answer.
#pragma once

#include <QDateTime>
#include <QString>
#include <QUuid>

#include <optional>

struct ParsedMessage
{
    QString thinking; // the reasoning
    QString answer;

    bool operator==(const ParsedMessage &) const = default;
};

struct ChatMessage
{
    QUuid id;
    QString role;                          // "user" or "assistant"; a file may hold any text
    QString content;                       // a reply's may contain reasoning between "<think>" and "</think>"
    QString thinking;                      // reasoning that the engine delivered apart from the answer
    std::optional<double> tokensPerSecond; // a reply's, once it has ended with the engine's counters
    QDateTime createdAt;

    bool operator==(const ChatMessage &) const = default;

    // A message with a new id, made now.
    static ChatMessage make(const QString &role, const QString &content = {});

    // The reasoning of both sources, pieces two newlines apart, and the answer without it. Takes time in
    // proportion to the text, whatever the text.
    ParsedMessage parsed() const;
};

Q_DECLARE_TYPEINFO(ChatMessage, Q_RELOCATABLE_TYPE);
