// A Markdown-flavoured text as blocks of prose and fenced code. The transcript does not go through here: it
// lays out the lines of a text that grows, which MarkdownLines finds by the same rule.
#pragma once

#include <QList>
#include <QString>

struct MDBlock
{
    enum class Kind
    {
        text,
        code
    };

    Kind kind;
    QString content;  // lines joined with newlines, as they stood in the text
    QString language; // of a code block, possibly empty; empty for text

    bool operator==(const MDBlock &) const = default;

    static MDBlock text(const QString &content) { return {Kind::text, content, {}}; }
    static MDBlock code(const QString &language, const QString &content)
    {
        return {Kind::code, content, language};
    }
};

class MarkdownView
{
public:
    static QList<MDBlock> parse(const QString &text);
};
