#include "HostileText.h"

#include <QMap>

using namespace Qt::StringLiterals;

namespace {

// What each text repeats, behind what it begins with.
struct Recipe
{
    QString start;
    QString unit;
};

const QMap<QString, Recipe> recipes{
    {u"emoji joined"_s, {{}, u"\U0001F469\u200D"_s}},
    {u"combining marks"_s, {u"a"_s, u"\u0301"_s}},
    {u"marks of many kinds"_s, {u"\u0e01"_s, u"\u0e31\u0300\u0489\u20dd\u0303"_s}},
    {u"one word"_s, {{}, u"w"_s}},
    {u"words"_s, {{}, u"word "_s}},
    {u"blanks"_s, {u"a"_s, u" "_s}},
    {u"no-break blanks"_s, {u"a"_s, u"\u00a0"_s}},
    {u"lines"_s, {{}, u"a\n"_s}},
    {u"empty lines"_s, {u"a"_s, u"\n"_s}},
    {u"line separators"_s, {u"a"_s, u"\u2028"_s}},
    {u"tabs"_s, {u"a"_s, u"\t"_s}},
    {u"overrides"_s, {u"a"_s, u"\u202eb"_s}},
    {u"isolates"_s, {u"a"_s, u"\u2066\u202a"_s}},
    {u"both directions"_s, {{}, u"a\u05d0 1"_s}},
    {u"controls"_s, {u"a"_s, u"\u0001\u0007\u001b[31m"_s}},
    {u"zeros"_s, {u"a"_s, QString(QChar(0)) + u'b'}},
    {u"half pairs"_s, {u"a"_s, QString(QChar(0xd83d))}},
    {u"no characters"_s, {u"a"_s, u"\ufffe\uffff"_s}},
    {u"ideographs"_s, {{}, u"\u4e16\u754c"_s}},
    {u"ligatures"_s, {{}, u"\u0644\u0627"_s}},
    {u"conjuncts"_s, {{}, u"\u0915\u094d"_s}},
    {u"flags"_s, {{}, u"\U0001F1E6"_s}},
    {u"variation selectors"_s, {u"\u2764"_s, u"\ufe0f"_s}},
    {u"tags"_s, {u"\U0001F3F4"_s, u"\U000E0067"_s}},
    {u"soft hyphens"_s, {{}, u"a\u00ad"_s}},
    {u"ampersands"_s, {{}, u"&"_s}},
    {u"places"_s, {{}, u"%1%n%2"_s}},
    {u"markup"_s, {u"<html>"_s, u"<b><img src='/dev/zero'>"_s}},
    {u"stars"_s, {{}, u"**a*"_s}},
    {u"brackets"_s, {{}, u"["_s}},
    {u"links"_s, {{}, u"[a](http://b) "_s}},
    {u"back ticks"_s, {{}, u"`"_s}},
    {u"quotes"_s, {{}, u"> "_s}},
    {u"list"_s, {{}, u"- a\n  "_s}},
    {u"headings"_s, {{}, u"# a\n"_s}},
    {u"fences"_s, {{}, u"```\na\n"_s}},
    {u"open fence"_s, {u"```\n"_s, u"int a;\n"_s}},
    {u"table"_s, {u"|a|\n|-|\n"_s, u"|a"_s}},
    {u"entities"_s, {{}, u"&#x1F469;&amp;"_s}},
    {u"thoughts"_s, {{}, u"<think>"_s}},
    {u"rules"_s, {{}, u"---\n"_s}},
};

} // namespace

QStringList HostileText::names()
{
    return recipes.keys();
}

QString HostileText::text(const QString &name, qsizetype units)
{
    const Recipe recipe = recipes.value(name);
    return recipe.start + recipe.unit.repeated(units / recipe.unit.size());
}

QString HostileText::sample()
{
    QString result;
    for (const QString &name : names())
        result += text(name, 12) + u'\n';
    return result;
}

QString HostileText::mixture(QRandomGenerator &random, qsizetype units)
{
    const QStringList all = names();
    QString result;
    while (result.size() < units) {
        const qsizetype part = 1 + random.bounded(static_cast<int>(std::min<qsizetype>(units, 4096)));
        result += text(all.at(random.bounded(all.size())), part).left(part);
    }
    return result.left(units);
}
