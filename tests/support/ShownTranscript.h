// A transcript in a window, with the conversation it shows.
#pragma once

#include "support/FakeDesktop.h"
#include "ui/chat/transcript/Transcript.h"

#include <QTest>

struct ShownTranscript
{
    explicit ShownTranscript(QSize size = {600, 400})
    {
        view.resize(size);
        view.show();
    }
    // Shows a conversation of this reply.
    explicit ShownTranscript(const QString &reply, bool isGenerating = false) : ShownTranscript()
    {
        addReply(reply);
        show(isGenerating);
    }

    void addUsers(const QString &text)
    {
        conversation.messages += ChatMessage::make(QStringLiteral("user"), text);
    }
    void addReply(const QString &text, const QString &thinking = {})
    {
        conversation.messages += ChatMessage::make(QStringLiteral("assistant"), text);
        last().thinking = thinking;
    }
    // Of differing lengths and kinds.
    void addMany(int messages)
    {
        for (int i = 0; i < messages; i += 2) {
            addUsers(QStringLiteral("Question %1?").arg(i));
            QString answer = QStringLiteral("Answer %1").arg(i);
            for (int line = 0; line < i % 7; ++line)
                answer += QStringLiteral("\n- an item that may be too long for a single line of the column ")
                              .repeated(1 + line % 3);
            if (i % 3 == 0)
                answer += QStringLiteral("\n```\ncode\n```\n# Heading");
            addReply(answer);
        }
    }

    ChatMessage &last() { return conversation.messages.last(); }

    void show(bool isGenerating = false)
    {
        view.showConversation(conversation, isGenerating);
        settle();
    }
    void grow(const QString &text)
    {
        last().content += text;
        show(true);
    }
    // Paints, which lays everything out that is in sight.
    QImage settle() { return view.viewport()->grab().toImage(); }

    QRect rect(int message, MessagePart part, int row)
    {
        return view.transcript().rect(RowAddress{message, {part, row}}).value_or(QRect());
    }
    QPoint place(int message, int row, int x)
    {
        return {rect(message, MessagePart::text, row).left() + x, middle(message, row)};
    }
    int middle(int message, int row) { return rect(message, MessagePart::text, row).center().y() + 1; }
    QStringList labels(int message)
    {
        QStringList labels;
        for (const TranscriptButton &button : view.buttons(message))
            labels += buttonLabel(button.kind);
        return labels;
    }
    void click(QPoint point) { QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, point); }
    void click(const TranscriptButton &button) { click(view.transcript().rect(button).center()); }

    FakeDesktop desktop;
    Transcript view{desktop};
    Conversation conversation = Conversation::make({});
};
