#include "core/chat/ParsedReply.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr auto openingTag = "<think>"_L1;
constexpr auto closingTag = "</think>"_L1;

void addPiece(QString &reasoning, QStringView piece)
{
    if (piece.isEmpty())
        return;
    if (!reasoning.isEmpty())
        reasoning += "\n\n"_L1;
    reasoning += piece;
}

} // namespace

bool ParsedReply::Read::isContinuedBy(QStringView text) const
{
    return text.size() >= size && text.sliced(size - end.size(), end.size()) == end;
}

void ParsedReply::Read::take(QStringView text)
{
    constexpr qsizetype remembered = 32;
    size = text.size();
    end = text.last(std::min(size, remembered)).toString();
}

void ParsedReply::update(QStringView content, QStringView thinking)
{
    if (!m_content.isContinuedBy(content) || !m_thinking.isContinuedBy(thinking))
        *this = {};
    m_rest.mark();
    m_unchangedReasoning = m_reasoning.size();
    readField(thinking.sliced(m_thinking.size));
    readContent(content.sliced(m_content.size));
    m_thinking.take(thinking);
    m_content.take(content);
    if (m_mustCompose)
        composeReasoning();
    else
        showOpenBlock();
}

void ParsedReply::readField(QStringView added)
{
    if (added.isEmpty())
        return;
    m_field += added;
    if (m_reasoning.size() + added.size() == m_field.size())
        m_reasoning += added;
    else
        m_mustCompose = true;
}

// The text on both sides of a block closes up and may spell a new tag; each tag ends with the '>' read last.
void ParsedReply::readContent(QStringView added)
{
    while (!added.isEmpty()) {
        const qsizetype tagEnd = added.indexOf(u'>');
        const qsizetype size = tagEnd < 0 ? added.size() : tagEnd + 1;
        (m_inBlock ? m_block : m_rest).append(added.first(size));
        added = added.sliced(size);
        if (m_inBlock) {
            if (m_block.endsWith(closingTag))
                closeBlock();
        } else if (m_rest.endsWith(openingTag)) {
            m_rest.chop(openingTag.size());
            m_inBlock = true;
        } else if (!m_hasStray && m_rest.endsWith(closingTag)) {
            closeStray();
        }
    }
}

void ParsedReply::closeBlock()
{
    m_block.chop(closingTag.size());
    if (const QStringView piece = m_block.trimmed(); !piece.isEmpty())
        m_pieces += piece.toString();
    m_block.clear();
    m_inBlock = false;
    m_mustCompose = true;
}

void ParsedReply::closeStray()
{
    m_rest.chop(closingTag.size());
    m_strayPiece = m_rest.trimmed().toString();
    m_rest.clear();
    m_hasStray = true;
    m_mustCompose = true;
}

void ParsedReply::showOpenBlock()
{
    const QStringView piece = m_block.trimmed();
    if (piece.size() == m_blockShown)
        return;
    if (!m_strayPiece.isEmpty())
        return composeReasoning();
    if (m_blockShown == 0)
        addPiece(m_reasoning, piece);
    else
        m_reasoning += piece.sliced(m_blockShown);
    m_blockShown = piece.size();
}

void ParsedReply::composeReasoning()
{
    QString composed = m_field;
    for (const QString &piece : std::as_const(m_pieces))
        addPiece(composed, piece);
    addPiece(composed, m_block.trimmed());
    addPiece(composed, m_strayPiece);
    const auto [before, now] =
        std::mismatch(m_reasoning.cbegin(), m_reasoning.cbegin() + m_unchangedReasoning, composed.cbegin(),
                      composed.cend());
    m_unchangedReasoning = before - m_reasoning.cbegin();
    m_reasoning = composed;
    m_blockShown = m_block.trimmed().size();
    m_mustCompose = false;
}
