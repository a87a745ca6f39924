// The lines of a Markdown text and what each of them is to the fenced code blocks, kept up to date while the
// text grows at a cost that depends on what is new, not on what is there.
#pragma once

#include <QStringView>

#include <vector>

class MarkdownLines
{
public:
    enum class Kind
    {
        prose,
        openingFence,
        code,
        closingFence
    };

    struct Line
    {
        qsizetype start; // into the text
        qsizetype length;
        Kind kind;

        bool operator==(const Line &) const = default;
    };

    enum class Fences
    {
        recognised,
        ignored // every line is prose
    };

    explicit MarkdownLines(Fences fences = Fences::recognised) : m_fences(fences) {}

    // Goes over to `text`, whose first `unchanged` characters are those of the text before. Returns the index
    // of the first line that may have changed; those before it are as they were.
    qsizetype update(QStringView text, qsizetype unchanged);

    // At least one after the first update: an empty text is one empty line.
    const std::vector<Line> &lines() const { return m_lines; }

    // Whether a line appended now would stand inside a code block.
    bool endsInCode() const { return isInside(m_lines.size()); }

    // What follows the three backticks of an opening fence, without spaces and tabs around it.
    static QStringView language(QStringView line);

private:
    bool isInside(size_t line) const;

    Fences m_fences;
    qsizetype m_size = 0; // of the text
    std::vector<Line> m_lines;
};
