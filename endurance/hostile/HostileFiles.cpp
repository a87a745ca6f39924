#include "HostileFiles.h"

#include "HostileText.h"
#include "core/chat/ConversationFile.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

Conversation conversation(const QString &title, const QString &text, int messages = 2)
{
    Conversation result = Conversation::make(u"sound:latest"_s);
    result.title = title;
    for (int i = 0; i < messages; ++i)
        result.messages.append(ChatMessage::make(i % 2 == 0 ? u"user"_s : u"assistant"_s, text));
    return result;
}

QByteArray encoded(const Conversation &conversation)
{
    return ConversationFile::encode(conversation).value_or(QByteArray());
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("%s cannot be written", qUtf8Printable(path));
}

void store(const QString &folder, const Conversation &conversation)
{
    write(folder + u'/' + ConversationFile::name(conversation.id), encoded(conversation));
}

// Where the program would look for a conversation.
QString freePath(const QString &folder)
{
    return folder + u'/' + ConversationFile::name(QUuid::createUuid());
}

void link(const QString &folder, const char *target)
{
    if (::symlink(target, QFile::encodeName(freePath(folder)).constData()) != 0)
        qFatal("A link cannot be made");
}

void sparse(const QString &folder)
{
    QFile file(freePath(folder));
    if (!file.open(QIODevice::WriteOnly) || !file.resize(qint64(40) << 30))
        qWarning("No sparse file can be made here");
}

void oddNames(const QString &folder)
{
    const QByteArray content = encoded(conversation(u"odd"_s, u"odd"_s));
    const QByteArrayList names{"-rf.json",
                               "\xff\xfe.json",
                               "a\nb.json",
                               "\xe2\x80\xaegpj.json",
                               ".json",
                               "{}.json",
                               QByteArray(250, 'a') + ".json",
                               "%1%n.json",
                               "&amp;<b>.json",
                               ".tarnwick-x.tmp"};
    for (const QByteArray &name : names)
        write(folder + u'/' + QFile::decodeName(name), content);
}

QByteArray damaged(QRandomGenerator &random)
{
    QByteArray content = encoded(conversation(u"damaged"_s, HostileText::mixture(random, 2000)));
    for (int i = random.bounded(1, 20); i > 0; --i)
        content[random.bounded(static_cast<int>(content.size()))] = static_cast<char>(random.bounded(256));
    return content.first(random.bounded(static_cast<int>(content.size())));
}

const QStringList kinds{u"fifo"_s,
                        u"link to a fifo"_s,
                        u"link to a device"_s,
                        u"link to itself"_s,
                        u"link elsewhere"_s,
                        u"sparse file"_s,
                        u"folder"_s,
                        u"closed file"_s,
                        u"odd names"_s,
                        u"damaged"_s,
                        u"deep"_s,
                        u"tiny values"_s,
                        u"one id twice"_s,
                        u"2,000 files"_s,
                        u"50,000 messages"_s,
                        u"one long message"_s};

} // namespace

QStringList HostileFiles::names()
{
    QStringList all = kinds;
    for (const QString &text : HostileText::names())
        all += {u"title: "_s + text, u"message: "_s + text};
    return all;
}

void HostileFiles::make(const QString &name, const QString &folder, QRandomGenerator &random)
{
    const QString text = name.section(u": "_s, 1);
    if (name == "fifo"_L1) {
        if (::mkfifo(QFile::encodeName(freePath(folder)).constData(), 0600) != 0)
            qFatal("No fifo can be made");
    } else if (name == "link to a fifo"_L1) {
        ::mkfifo(QFile::encodeName(folder + "/../fifo"_L1).constData(), 0600);
        link(folder, "../fifo");
    } else if (name == "link to a device"_L1) {
        link(folder, "/dev/zero");
    } else if (name == "link to itself"_L1) {
        link(folder, ".");
    } else if (name == "link elsewhere"_L1) {
        link(folder, "/etc/passwd");
    } else if (name == "sparse file"_L1) {
        sparse(folder);
    } else if (name == "folder"_L1) {
        QDir().mkdir(freePath(folder));
    } else if (name == "closed file"_L1) {
        const QString path = freePath(folder);
        write(path, "{}");
        QFile::setPermissions(path, {});
    } else if (name == "odd names"_L1) {
        oddNames(folder);
    } else if (name == "damaged"_L1) {
        for (int i = 0; i < 50; ++i)
            write(freePath(folder), damaged(random));
    } else if (name == "deep"_L1) {
        write(freePath(folder), QByteArray("{\"messages\":[").repeated(500'000));
    } else if (name == "tiny values"_L1) {
        write(freePath(folder), "{\"a\":[" + QByteArray("0,").repeated(4'000'000) + "0]}");
    } else if (name == "one id twice"_L1) {
        const QByteArray content = encoded(conversation(u"twice"_s, u"twice"_s));
        write(freePath(folder), content);
        write(freePath(folder), content);
    } else if (name == "2,000 files"_L1) {
        for (int i = 0; i < 2000; ++i)
            store(folder, conversation(u"chat %1"_s.arg(i), HostileText::mixture(random, 500)));
    } else if (name == "50,000 messages"_L1) {
        store(folder, conversation(u"long"_s, u"a short message"_s, 50'000));
    } else if (name == "one long message"_L1) {
        store(folder, conversation(u"long"_s, HostileText::mixture(random, 2'000'000)));
    } else if (name.startsWith("title: "_L1)) {
        store(folder, conversation(HostileText::text(text, 300'000), u"a"_s));
    } else {
        store(folder, conversation(u"a"_s, HostileText::text(text, 300'000)));
    }
}
