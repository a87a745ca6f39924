// Prints the reply that streams in a chat as it comes: first the model's reasoning, then its answer.
#pragma once

#include "core/chat/ParsedReply.h"

#include <QObject>

class AppState;

class ReplyTeller : public QObject
{
public:
    // Tells of the chat that is open while this lives. `state` must outlive it.
    explicit ReplyTeller(AppState &state);
    // Ends the line.
    ~ReplyTeller() override;

private:
    void tell();
    void continueWith(QStringView text, const char *name, qsizetype &told);

    AppState &m_state;
    ParsedReply m_reply;
    qsizetype m_reasoningTold = 0;
    qsizetype m_answerTold = 0;
};
