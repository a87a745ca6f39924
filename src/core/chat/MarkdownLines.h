// The lines of a Markdown text and what each of them is to the fenced code blocks, kept up to date while the
// text grows at a cost that depends on what is new, not on what is there.
#pragma once

#include <QStringView>

#include <limits>
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
        bool continues = false; // the line before, which was too long

        bool operator==(const Line &) const = default;
    };

    // No limits unless they are given.
    struct Limits
    {
        qsizetype lineLength = std::numeric_limits<qsizetype>::max(); // of prose; a longer line is broken
        size_t lines = std::numeric_limits<size_t>::max();            // the rest of the text is left out
    };

    enum class Fences
    {
        recognised,
        ignored // every line is prose
    };

    explicit MarkdownLines(Fences fences = Fences::recognised) : m_fences(fences) {}
    MarkdownLines(Fences fences, const Limits &limits) : m_fences(fences), m_limits(limits) {}

    // Goes over to `text`, whose first `unchanged` characters are those of the text before. Returns the index
    // of the first line that may have changed; those before it are as they were.
    qsizetype update(QStringView text, qsizetype unchanged);

    // At least one after the first update: an empty text is one empty line.
    const std::vector<Line> &lines() const { return m_lines; }

    // Whether some of the text is left out.
    bool isCut() const { return m_isCut; }

    // Whether a line appended now would stand inside a code block.
    bool endsInCode() const { return isInside(m_lines.size()); }

    // What follows the three backticks of an opening fence, without spaces and tabs around it.
    static QStringView language(QStringView line);

private:
    bool isInside(size_t line) const;
    void add(QStringView text, const Line &line);

    Fences m_fences;
    Limits m_limits;
    qsizetype m_size = 0; // of the text
    bool m_isCut = false;
    std::vector<Line> m_lines;
};
