// Uses a real chat store without a pause, to be killed at any moment, and afterwards looks at what is left.
//     crash_writer write FOLDER ENGINE PORT    runs ENGINE on PORT as well; says "ready" once all works, and
//     never
//                                              ends by itself
//     crash_writer check FOLDER                0 when every file is whole, every one loads and nothing else
//     is there
#include "core/chat/ChatStore.h"
#include "core/chat/ConversationFile.h"
#include "core/engine/AppPaths.h"
#include "core/engine/EngineManager.h"
#include "platform/async/Launch.h"
#include "platform/defaults/UserDefaults.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <chrono>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype conversationsKept = 12;
constexpr int savesAhead = 6;

// The title says how long the text of each message is, and a text is one letter over and over, so a file that
// was pieced together of two snapshots gives itself away.
void rewrite(Conversation &conversation)
{
    QRandomGenerator &random = *QRandomGenerator::global();
    const int length = random.bounded(random.bounded(10) == 0 ? 200'000 : 2'000);
    const QString text(length, QChar(u'a' + random.bounded(26)));
    conversation.title = QString::number(length);
    conversation.messages.clear();
    for (int i = random.bounded(1, 6); i > 0; --i)
        conversation.messages.append(ChatMessage::make(u"assistant"_s, text));
}

bool isWhole(const Conversation &conversation)
{
    for (const ChatMessage &message : conversation.messages) {
        const QString &text = message.content;
        if (QString::number(text.size()) != conversation.title ||
            (!text.isEmpty() && text.count(text.front()) != text.size()) ||
            text != conversation.messages.first().content)
            return false;
    }
    return true;
}

Task<> writeForEver(ChatStore *store)
{
    QRandomGenerator &random = *QRandomGenerator::global();
    for (;;) {
        const auto count = static_cast<int>(store->conversations().size());
        const QUuid id =
            count == 0 ? store->newConversation(u"m"_s).id : store->conversations()[random.bounded(count)].id;
        store->mutate(id, rewrite);
        switch (random.bounded(4)) {
        case 0:
            store->touch(id);
            break;
        case 1:
            store->commit(id);
            store->deleteConversation(id);
            break;
        default:
            store->commit(id);
        }
        if (store->conversations().size() < conversationsKept)
            store->newConversation(u"m"_s);
        // One that is new has the title of a new chat and no messages, and is whole as well.
        const std::chrono::seconds limit(60);
        if (store->pendingSaves() > savesAhead)
            co_await store->savesWritten(limit);
    }
}

// The engine works beside the writing, as it does in the program, and has to go with it.
Task<> work(EngineManager *engine, ChatStore *store)
{
    co_await engine->start();
    if (engine->state().kind != EngineManager::State::running)
        qFatal("The engine did not start: %s", qPrintable(engine->state().message));
    std::printf("ready\n");
    std::fflush(stdout);
    co_await writeForEver(store);
}

int write(const QString &folder, const QString &program, int port)
{
    const QString profile = QFileInfo(folder).absolutePath();
    AppPaths::setApplicationDir(profile);
    UserDefaults defaults(profile + "/settings.ini"_L1);
    defaults.set(u"manualEnginePath"_s, program);
    defaults.set(u"port"_s, port);
    EngineManager engine(defaults);
    ChatStore store(folder);
    launch([&] { return work(&engine, &store); });
    return QCoreApplication::exec();
}

int check(const QString &folder)
{
    const ChatStore store(folder);
    int wrong = 0;
    const QStringList names =
        QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &name : names) {
        QFile file(folder + u'/' + name);
        const std::optional<Conversation> conversation =
            file.open(QIODevice::ReadOnly) ? ConversationFile::decode(file.readAll()) : std::nullopt;
        if (conversation && name == ConversationFile::name(conversation->id) && isWhole(*conversation) &&
            store.find(conversation->id))
            continue;
        std::fprintf(stderr, "crash_writer: %s should not be there or is not whole\n", qPrintable(name));
        ++wrong;
    }
    std::printf("%lld files, %lld conversations, %d wrong\n", static_cast<long long>(names.size()),
                static_cast<long long>(store.conversations().size()), wrong);
    return wrong == 0 && store.conversations().size() == names.size() ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 3 && arguments[1] == "check"_L1)
        return check(arguments[2]);
    if (arguments.size() == 5 && arguments[1] == "write"_L1)
        return write(arguments[2], arguments[3], arguments[4].toInt());
    std::fprintf(stderr, "usage: crash_writer write FOLDER ENGINE PORT | check FOLDER\n");
    return 2;
}
