#include "ReplyTeller.h"

#include "core/app/AppState.h"

#include <cstdio>

using namespace Qt::StringLiterals;

ReplyTeller::ReplyTeller(AppState &state) : m_state(state)
{
    connect(&state.chats(), &ChatStore::conversationChanged, this, &ReplyTeller::tell);
}

ReplyTeller::~ReplyTeller()
{
    std::puts("");
}

void ReplyTeller::tell()
{
    const std::optional<QUuid> selected = m_state.chats().selectedID();
    const Conversation *const chat = selected ? m_state.chats().find(*selected) : nullptr;
    if (!chat || chat->messages.isEmpty() || chat->messages.last().role != "assistant"_L1)
        return;
    m_reply.update(chat->messages.last().content, chat->messages.last().thinking);
    continueWith(m_reply.reasoning(), "reasoning", m_reasoningTold);
    continueWith(m_reply.answer(), "answer", m_answerTold);
}

void ReplyTeller::continueWith(QStringView text, const char *name, qsizetype &told)
{
    if (text.size() <= told)
        return;
    if (told == 0)
        std::printf("\n  %s: ", name);
    std::fputs(qUtf8Printable(text.sliced(told).toString()), stdout);
    std::fflush(stdout);
    told = text.size();
}
