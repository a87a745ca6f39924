// The rows in which a text is shown: its lines of prose, and of each code block a header, its lines and a
// footer. Row and line have the same number; a code block that is still open has a footer behind the last
// line. A line of prose that is too long to be laid out at once takes several rows, and of a text beyond
// measure the beginning has rows alone.
#pragma once

#include "core/chat/MarkdownLines.h"

#include <QStringView>

#include <vector>

class FlowRows
{
public:
    enum class Kind : quint8
    {
        prose,
        codeHeader,
        code,
        codeFooter
    };

    struct Row
    {
        Kind kind;
        int block; // index into the code blocks, or -1
    };

    struct CodeBlock
    {
        int header;       // its row
        int footer;       // its row
        int scrolled = 0; // to the right, in device-independent pixels
        // The greatest width of the lines before `measuredTo`.
        int columns = 0;
        int measuredTo = 0;
    };

    explicit FlowRows(MarkdownLines::Fences fences);

    // Goes over to `text`, whose first `unchanged` characters are those of the text before; it must stay
    // where it is until the next update. Returns the first row that may have changed.
    int update(QStringView text, qsizetype unchanged);

    int count() const { return static_cast<int>(m_rows.size()); }
    const Row &row(int index) const { return m_rows[static_cast<size_t>(index)]; }
    // The line of the text that stands in the row; empty for the footer of an open block.
    QStringView line(int row) const;
    // Whether the row goes on with the line of the row before.
    bool continues(int row) const;
    // Whether some of the text has no row.
    bool isCut() const { return m_isCut; }

    int blockCount() const { return static_cast<int>(m_blocks.size()); }
    CodeBlock &block(int index) { return m_blocks[static_cast<size_t>(index)]; }
    const CodeBlock &block(int index) const { return m_blocks[static_cast<size_t>(index)]; }
    // The code itself, as it stands in the text.
    QStringView code(int block) const;
    // Whether the block has no line at all, not even an empty one.
    bool isEmpty(int block) const;
    // The width of its widest line.
    int columns(int block);

private:
    // The text's last line, which may grow, as far as its width is known.
    struct Tail
    {
        int row = -1;
        qsizetype measured = 0;
        int columns = 0;
    };

    void truncate(int rows);
    void append(int line);

    MarkdownLines m_lines;
    QStringView m_text;
    bool m_isCut = false;
    Tail m_tail;
    std::vector<Row> m_rows;
    std::vector<CodeBlock> m_blocks;
};
