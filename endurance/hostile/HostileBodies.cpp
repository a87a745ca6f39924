#include "HostileBodies.h"

#include "HostileText.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype mebi = 1024 * 1024;

QByteArray spelled(const QString &text)
{
    return QJsonDocument(QJsonObject{{u"a"_s, text}}).toJson(QJsonDocument::Compact).sliced(5).chopped(1);
}

QByteArray list(const QByteArray &entry, qsizetype count)
{
    return "{\"models\":[" + QByteArray(entry + ',').repeated(count).chopped(1) + "]}";
}

QByteArray numbered(const QByteArray &entry, int count)
{
    QByteArray all;
    for (int i = 0; i < count; ++i)
        all += QByteArray(entry).replace('#', QByteArray::number(i)) + ',';
    return "{\"models\":[" + all.chopped(1) + "]}";
}

QByteArray pulls(int count)
{
    QByteArray all;
    for (int i = 0; i < count; ++i) {
        const QByteArray number = QByteArray::number(i);
        all += "{\"status\":\"pulling " + number + "\",\"digest\":\"sha256:" + number +
               "\",\"total\":1000,\"completed\":" + number + "}\n";
    }
    return all;
}

// An answer in which one of what is text is `text`; a stream brings it in several lines, too.
QByteArray telling(const QString &endpoint, const QByteArray &text)
{
    if (endpoint == "tags"_L1 || endpoint == "ps"_L1)
        return "{\"models\":[{\"name\":" + text + ",\"details\":{\"family\":" + text + "}}]}";
    if (endpoint == "show"_L1)
        return "{\"license\":" + text + ",\"parameters\":" + text + ",\"capabilities\":[" + text +
               "],\"details\":{\"family\":" + text + "}}";
    if (endpoint == "chat"_L1)
        return "{\"message\":{\"content\":" + text + "}}\n{\"done\":true}\n";
    if (endpoint == "pull"_L1)
        return "{\"status\":" + text + ",\"digest\":" + text + ",\"total\":9}\n{\"status\":\"success\"}\n";
    if (endpoint == "version"_L1)
        return "{\"version\":" + text + "}";
    return "{\"error\":" + text + "}";
}

bool isStream(const QString &endpoint)
{
    return endpoint == "chat"_L1 || endpoint == "pull"_L1;
}

const QStringList shapes{u"deep"_s,      u"tiny values"_s, u"tiny objects"_s, u"many keys"_s, u"many texts"_s,
                         u"truncated"_s, u"not UTF-8"_s,   u"null"_s,         u"empty"_s,     u"blanks"_s,
                         u"numbers"_s,   u"mutated"_s,     u"twice"_s};
const QStringList lists{u"30,000 models"_s, u"30,000 whole models"_s, u"a million models"_s,
                        u"one model often"_s};
const QStringList streams{u"empty objects"_s, u"empty lines"_s, u"single letters"_s, u"one line"_s,
                          u"thoughts"_s};

QByteArray listBody(const QString &name)
{
    if (name == lists[0])
        return numbered(R"({"name":"m#"})", 30'000);
    if (name == lists[1])
        return numbered(
            R"({"name":"a-model-#:latest","model":"a-model-#:latest","modified_at":"2026-08-01T10:00:00.123456789+02:00","size":2019393189,"digest":"a80c4f17acd55265feec403c7aef86be0c25983ab279d83f3bcd3abbcb5b8b72","details":{"parent_model":"","format":"gguf","family":"llama","families":["llama"],"parameter_size":"3.2B","quantization_level":"Q4_K_M"}})",
            30'000);
    if (name == lists[2])
        return numbered(R"({"name":"#"})", 1'000'000);
    return list(R"({"name":"a"})", 20'000);
}

QByteArray streamBody(const QString &endpoint, const QString &name)
{
    if (endpoint == "pull"_L1 && name == u"layers"_s)
        return pulls(200'000);
    if (name == streams[0])
        return QByteArray("{}\n").repeated(2'000'000);
    if (name == streams[1])
        return QByteArray(6'000'000, '\n');
    if (name == streams[2])
        return QByteArray("{\"message\":{\"content\":\"a\"},\"status\":\"a\"}\n").repeated(50'000);
    if (name == streams[3])
        return "{\"message\":{\"content\":\"" + QByteArray(7 * mebi, 'a') + "\"}}\n";
    return "{\"message\":{\"thinking\":\"" + QByteArray("word ").repeated(mebi / 5) + "\"}}\n";
}

QByteArray mutated(QByteArray body, QRandomGenerator &random)
{
    static const QByteArrayList pieces{"\"",      "{",    "}",    "[",     "]", ",",  ":",  "\\", "\\u0000",
                                       "\\ud800", "\xff", "null", "1e999", "-", "\n", "\r", ""};
    for (int changes = 1 + random.bounded(8); changes > 0 && !body.isEmpty(); --changes) {
        const qsizetype at = random.bounded(static_cast<int>(body.size()));
        body.replace(at, random.bounded(4), pieces.at(random.bounded(pieces.size())));
    }
    return body;
}

QByteArray shapeBody(const QString &endpoint, const QString &name, QRandomGenerator &random)
{
    const QByteArray sound = HostileBodies::sound(endpoint);
    const QByteArray key = endpoint == "show"_L1   ? "model_info"
                           : endpoint == "chat"_L1 ? "message"
                                                   : "models";
    const auto filled = [&key](const QByteArray &value) { return "{\"" + key + "\":" + value + "}\n"; };
    if (name == "deep"_L1)
        return filled(QByteArray("[{\"a\":").repeated(500'000) + '1' + QByteArray("}]").repeated(500'000));
    if (name == "tiny values"_L1)
        return filled('[' + QByteArray("0,").repeated(3'900'000) + "0]");
    if (name == "tiny objects"_L1)
        return filled('[' + QByteArray("{},").repeated(2'600'000) + "{}]");
    if (name == "many keys"_L1) {
        QByteArray all = "{";
        for (int i = 0; i < 600'000; ++i)
            all += '"' + QByteArray::number(i) + "\":1,";
        return filled(all + "\"a.context_length\":9}");
    }
    if (name == "many texts"_L1)
        return "{\"capabilities\":[" + QByteArray("\"\",").repeated(2'600'000) + "\"\"]}";
    if (name == "truncated"_L1)
        return sound.chopped(sound.size() / 2);
    if (name == "not UTF-8"_L1)
        return QByteArray(sound).replace("a", "\xff\xc3");
    if (name == "null"_L1)
        return "null";
    if (name == "empty"_L1)
        return {};
    if (name == "blanks"_L1)
        return QByteArray(7 * mebi, ' ') + sound;
    if (name == "numbers"_L1)
        return "{\"total\":1e308,\"completed\":-1e308,\"models\":[{\"name\":\"a\",\"size\":-9e99}],\"eval_"
               "count\":-1,"
               "\"eval_duration\":1e-300,\"status\":\"a\",\"digest\":\"a\",\"done\":true}\n";
    if (name == "twice"_L1)
        return sound + sound;
    return mutated(sound, random);
}

} // namespace

QStringList HostileBodies::names(const QString &endpoint)
{
    QStringList all = shapes;
    if (endpoint == "tags"_L1 || endpoint == "ps"_L1)
        all += lists;
    if (isStream(endpoint))
        all += streams;
    if (endpoint == "pull"_L1)
        all += u"layers"_s;
    for (const QString &text : HostileText::names())
        all += {u"text: "_s + text, u"error: "_s + text};
    return all;
}

WireAnswer HostileBodies::answer(const QString &endpoint, const QString &name, QRandomGenerator &random)
{
    const qsizetype longest = endpoint == "version"_L1 ? 4'000 : endpoint == "show"_L1 ? 400'000 : 1'000'000;
    const QString text = name.section(u": "_s, 1);
    if (name.startsWith("error: "_L1)) {
        const QByteArray error = "{\"error\":" + spelled(HostileText::text(text, 20'000)) + "}";
        return isStream(endpoint) ? HostileServer::sound(sound(endpoint) + error)
                                  : WireAnswer{.bytes = "HTTP/1.1 500 X\r\n\r\n" + error};
    }
    if (name.startsWith("text: "_L1))
        return HostileServer::sound(telling(endpoint, spelled(HostileText::text(text, longest))));
    if (lists.contains(name))
        return HostileServer::sound(listBody(name));
    if (shapes.contains(name))
        return HostileServer::sound(shapeBody(endpoint, name, random));
    return HostileServer::sound(streamBody(endpoint, name));
}

QByteArray HostileBodies::sound(const QString &endpoint)
{
    return telling(endpoint, "\"a\"");
}
