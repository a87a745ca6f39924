// The split of a message into reasoning and answer, kept up to date while the message arrives at a cost that
// depends on what is new. A reply's content may hold reasoning between "<think>" and "</think>"; a template
// that opens the block itself leaves a closing tag alone in the text.
#pragma once

#include "core/chat/GrowingText.h"

#include <QStringList>
#include <QStringView>

class ParsedReply
{
public:
    // Takes over the two texts of a message as they are now. What has only grown since the last call costs as
    // much as its growth; anything else starts over.
    void update(QStringView content, QStringView thinking);

    // Valid until the next update.
    QStringView reasoning() const { return m_reasoning; }
    QStringView answer() const { return m_rest.trimmed(); }

    // How many characters at their start the last update has left as they were.
    qsizetype unchangedReasoning() const { return m_unchangedReasoning; }
    qsizetype unchangedAnswer() const { return m_rest.unchanged(); }

private:
    // What has been read of one of the message's texts: its length and its last characters, by which a text
    // that continues it is told from another one.
    struct Read
    {
        qsizetype size = 0;
        QString end;

        bool isContinuedBy(QStringView text) const;
        void take(QStringView text);
    };

    void readField(QStringView added);
    void readContent(QStringView added);
    void closeBlock();
    void closeStray();
    void showOpenBlock();
    void composeReasoning();

    Read m_content;
    Read m_thinking;
    QString m_field;     // the message's thinking
    GrowingText m_rest;  // the content outside of blocks and behind the stray closing tag, if there is one
    GrowingText m_block; // the inside of the block that is open
    bool m_inBlock = false;
    bool m_hasStray = false; // whether a closing tag without an opening one was found
    QStringList m_pieces;    // of reasoning, from the blocks that are closed
    QString m_strayPiece;    // from before the stray closing tag; stands behind every other piece

    QString m_reasoning;
    qsizetype m_blockShown = 0; // how many characters of the open block's piece m_reasoning ends with
    bool m_mustCompose = false; // m_reasoning changes elsewhere than at its end
    qsizetype m_unchangedReasoning = 0;
};
