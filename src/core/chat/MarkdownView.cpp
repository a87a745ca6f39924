#include "core/chat/MarkdownView.h"

#include "core/chat/MarkdownLines.h"

namespace {

using Kind = MarkdownLines::Kind;

class BlockWriter
{
public:
    explicit BlockWriter(const QString &text) : m_text(text) {}

    void add(const MarkdownLines::Line &line)
    {
        const bool isCode = line.kind != Kind::prose;
        const MDBlock::Kind kind = isCode ? MDBlock::Kind::code : MDBlock::Kind::text;
        const bool begins = line.kind == Kind::openingFence || blocks.isEmpty() || blocks.last().kind != kind;
        if (begins) {
            blocks.append({kind, {}, {}});
            m_lines = 0;
        }
        const QStringView content = QStringView(m_text).sliced(line.start, line.length);
        if (line.kind == Kind::openingFence)
            blocks.last().language = MarkdownLines::language(content).toString();
        if (line.kind != Kind::prose && line.kind != Kind::code)
            return;
        if (m_lines++ > 0)
            blocks.last().content += u'\n';
        blocks.last().content += content;
    }

    QList<MDBlock> blocks;

private:
    const QString &m_text;
    qsizetype m_lines = 0; // of the last block, its fences apart
};

} // namespace

QList<MDBlock> MarkdownView::parse(const QString &text)
{
    MarkdownLines lines;
    lines.update(text, 0);
    BlockWriter writer(text);
    for (const MarkdownLines::Line &line : lines.lines())
        writer.add(line);
    return writer.blocks;
}
