// Loads 5,000 conversation files of 20 messages of 400 characters through ChatStore, and in turns with it
// reads and parses the same bytes in one thread, which is the least that any loading must do.
#include "Figures.h"
#include "core/chat/ChatStore.h"
#include "core/chat/ConversationFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <cstdio>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

constexpr int fileCount = 5'000;
constexpr int rounds = 9;

QString paragraph(int seed)
{
    static const QStringList words{u"model"_s, u"answer"_s,  u"the"_s,      u"reasons"_s,
                                   u"a"_s,     u"quickly"_s, u"über"_s,     u"memory"_s,
                                   u"line"_s,  u"\n"_s,      u"\"loud\""_s, u"token"_s};
    QString text;
    for (int i = seed; text.size() < 400; i = i * 31 + 7) {
        text += words.at((i & 0xffff) % words.size());
        text += u' ';
        i &= 0xffff;
    }
    return text.first(400);
}

void makeFiles(const QString &folder)
{
    for (int i = 0; i < fileCount; ++i) {
        Conversation conversation = Conversation::make(u"qwen3:4b"_s);
        conversation.updatedAt = conversation.updatedAt.addSecs(-i * 37 % 100'000);
        for (int m = 0; m < 20; ++m) {
            conversation.messages.append(
                ChatMessage::make(m % 2 == 0 ? u"user"_s : u"assistant"_s, paragraph(i * 20 + m)));
            if (m % 2 != 0)
                conversation.messages.last().tokensPerSecond = 30.5 + m;
        }
        QFile file(folder + u'/' + ConversationFile::name(conversation.id));
        if (!file.open(QIODevice::WriteOnly))
            qFatal("The files cannot be made");
        file.write(ConversationFile::encode(conversation).value());
    }
}

qsizetype parseAll(const QString &folder)
{
    qsizetype members = 0;
    for (const QString &name : QDir(folder).entryList(QDir::Files)) {
        QFile file(folder + u'/' + name);
        if (file.open(QIODevice::ReadOnly))
            members += QJsonDocument::fromJson(file.readAll()).object().size();
    }
    return members;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    makeFiles(folder.path());

    Figure loading;
    Figure parsing;
    for (int round = -1; round < rounds; ++round) {
        Figure warmUp;
        const qsizetype members =
            (round < 0 ? warmUp : parsing).measure([&folder] { return parseAll(folder.path()); });
        const auto store = (round < 0 ? warmUp : loading).measure([&folder] {
            return std::make_unique<ChatStore>(folder.path());
        });
        if (members != fileCount * 7 || store->conversations().size() != fileCount)
            qFatal("Not everything was read");
    }

    std::printf("store: %d files, %d rounds, %u processors\n", fileCount, rounds,
                std::thread::hardware_concurrency());
    std::printf("store: loading   %7.1f ms wall, %7.1f ms CPU\n", median(loading.wall), median(loading.cpu));
    std::printf("store: parsing   %7.1f ms wall, %7.1f ms CPU\n", median(parsing.wall), median(parsing.cpu));
    std::printf("store: loading / parsing  %.2f wall, %.2f CPU (promised: wall at most 0.80, 1.10 on one "
                "processor)\n",
                median(loading.wall) / median(parsing.wall), median(loading.cpu) / median(parsing.cpu));
    return 0;
}
