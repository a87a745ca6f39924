#include "ui/chat/transcript/InlineMarkdown.h"

#include "ui/chat/transcript/HtmlEntities.h"

#include <QStringEncoder>

#include <algorithm>

#include <md4c.h>

namespace {

// In front of the line, so that nothing in it stands where block syntax is looked for. As white space it
// leaves the delimiters beside it their meaning.
constexpr QChar guard = QChar::Nbsp;

class Writer
{
public:
    int enter(MD_SPANTYPE type, const void *detail)
    {
        m_open.push_back(m_current);
        switch (type) {
        case MD_SPAN_EM:
            m_current.emphases |= StyledText::emphasis;
            break;
        case MD_SPAN_STRONG:
            m_current.emphases |= StyledText::strong;
            break;
        case MD_SPAN_CODE:
            m_current.emphases |= StyledText::code;
            break;
        case MD_SPAN_DEL:
            m_current.emphases |= StyledText::strikethrough;
            break;
        case MD_SPAN_A:
            m_current.link = result.links.size();
            result.links += attributeText(static_cast<const MD_SPAN_A_DETAIL *>(detail)->href);
            break;
        default:
            break;
        }
        return 0;
    }

    int leave()
    {
        m_current = m_open.back();
        m_open.pop_back();
        return 0;
    }

    int write(MD_TEXTTYPE type, const MD_CHAR *text, MD_SIZE size)
    {
        QString piece = decoded(type, text, size);
        if (!m_guardDropped && piece.startsWith(guard)) {
            piece.remove(0, 1);
            m_guardDropped = true;
        }
        if (m_current.emphases != StyledText::plain || m_current.link >= 0)
            addRun(piece.size());
        result.text += piece;
        return 0;
    }

    StyledText result;

private:
    struct Style
    {
        StyledText::Emphases emphases = StyledText::plain;
        qsizetype link = -1;
    };

    static QString decoded(MD_TEXTTYPE type, const MD_CHAR *text, MD_SIZE size)
    {
        if (type == MD_TEXT_NULLCHAR)
            return QString(QChar(QChar::ReplacementCharacter));
        const QString piece = QString::fromUtf8(text, static_cast<qsizetype>(size));
        return type == MD_TEXT_ENTITY ? decodedEntity(piece) : piece;
    }

    static QString attributeText(const MD_ATTRIBUTE &attribute)
    {
        QString text;
        for (size_t i = 0; attribute.substr_offsets[i] < attribute.size; ++i) {
            const MD_OFFSET start = attribute.substr_offsets[i];
            text += decoded(attribute.substr_types[i], attribute.text + start,
                            attribute.substr_offsets[i + 1] - start);
        }
        return text;
    }

    void addRun(qsizetype length)
    {
        if (length == 0)
            return;
        const qsizetype start = result.text.size();
        if (!result.runs.empty()) {
            StyledText::Run &last = result.runs.back();
            const bool continues = last.start + last.length == start;
            if (continues && last.emphases == m_current.emphases && last.link == m_current.link) {
                last.length += length;
                return;
            }
        }
        result.runs.push_back({start, length, m_current.emphases, m_current.link});
    }

    std::vector<Style> m_open;
    Style m_current;
    bool m_guardDropped = false;
};

Writer &writer(void *data)
{
    return *static_cast<Writer *>(data);
}

int ignoreBlock(MD_BLOCKTYPE, void *, void *)
{
    return 0;
}

int enterSpan(MD_SPANTYPE type, void *detail, void *data)
{
    return writer(data).enter(type, detail);
}

int leaveSpan(MD_SPANTYPE, void *, void *data)
{
    return writer(data).leave();
}

int writeText(MD_TEXTTYPE type, const MD_CHAR *text, MD_SIZE size, void *data)
{
    return writer(data).write(type, text, size);
}

// A carriage return would end md4c's line; as a line separator it breaks the line and nothing else.
QByteArray guarded(QStringView line)
{
    QString text = guard + line.toString();
    text.replace(u'\r', QChar(QChar::LineSeparator));
    // QString::toUtf8() would make a question mark of half a surrogate pair.
    QStringEncoder encoder(QStringEncoder::Utf8);
    return encoder(text);
}

// Whether nothing in the line can mean anything but itself.
bool isPlain(QStringView line)
{
    return std::all_of(line.begin(), line.end(), [](QChar c) {
        switch (c.unicode()) {
        case u'*':
        case u'_':
        case u'`':
        case u'~':
        case u'[':
        case u']':
        case u'<':
        case u'>':
        case u'!':
        case u'&':
        case u'\\':
            return false;
        default:
            return c >= u' ' && !c.isSurrogate();
        }
    });
}

} // namespace

StyledText inlineMarkdown(QStringView line)
{
    if (isPlain(line))
        return {line.toString(), {}, {}};
    MD_PARSER parser = {};
    parser.flags = MD_FLAG_NOHTML | MD_FLAG_STRIKETHROUGH | MD_FLAG_NOINDENTEDCODEBLOCKS;
    parser.enter_block = ignoreBlock;
    parser.leave_block = ignoreBlock;
    parser.enter_span = enterSpan;
    parser.leave_span = leaveSpan;
    parser.text = writeText;
    const QByteArray text = guarded(line);
    Writer writer;
    if (md_parse(text.constData(), static_cast<MD_SIZE>(text.size()), &parser, &writer) != 0)
        return {line.toString(), {}, {}};
    return std::move(writer.result);
}
