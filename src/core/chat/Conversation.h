// A conversation with a model, as it is shown and as it is stored.
#pragma once

#include "core/chat/ChatMessage.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QUuid>

struct Conversation
{
    QUuid id;
    QString title;
    QString model;     // the engine's name for it; empty when none is chosen
    bool think = true; // whether a model that can is asked to reason before it answers
    QDateTime createdAt;
    QDateTime updatedAt;         // when it was made, or its last reply ended
    QList<ChatMessage> messages; // oldest first

    bool operator==(const Conversation &) const = default;

    // The title of a conversation nobody has named or written in yet. Data: compared and stored, never
    // translated.
    static QString newTitle();

    // An empty conversation with a new id, made now.
    static Conversation make(const QString &model);
};

Q_DECLARE_TYPEINFO(Conversation, Q_RELOCATABLE_TYPE);
