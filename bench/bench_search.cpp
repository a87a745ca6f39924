// Types into the search over 5,000 conversations of 20 messages of 400 characters, from the keystroke to the
// painted list, and in turns with it does what the search means and no more: lower-cases the same strings and
// asks each whether it contains the text. Beside it: for how long the main thread was busy at a stretch.
#include "Figures.h"
#include "core/chat/ChatStore.h"
#include "core/chat/ConversationFile.h"
#include "ui/chat/ConversationListModel.h"
#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/RowListView.h"

#include <QApplication>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int conversationCount = 5'000;
constexpr int messageCount = 20;
constexpr qsizetype characters = 400;
constexpr int rounds = 9;

QString paragraph(QRandomGenerator &random)
{
    static const QStringList words{u"Model"_s,   u"answer"_s, u"the"_s,     u"Reasons"_s, u"a"_s,
                                   u"quickly"_s, u"Über"_s,   u"memory"_s,  u"line,"_s,   u"naïve"_s,
                                   u"of"_s,      u"token"_s,  u"it is"_s,   u"weather"_s, u"😀"_s,
                                   u"tree.\n"_s, u"QTimer"_s, u"because"_s, u"plan"_s,    u"ÉTÉ"_s};
    QString text;
    while (text.size() < characters) {
        text += words.at(random.bounded(static_cast<int>(words.size())));
        text += u' ';
    }
    return text.first(characters);
}

// A word in one conversation of a hundred, and one conversation that no search for letters finds.
void makeFiles(const QString &folder)
{
    QRandomGenerator random(1);
    for (int i = 0; i < conversationCount; ++i) {
        Conversation conversation = Conversation::make(u"qwen3:4b"_s);
        conversation.title = i == 0 ? u"0"_s : paragraph(random).first(40);
        conversation.updatedAt = conversation.updatedAt.addSecs(-i);
        for (int m = 0; m < messageCount; ++m) {
            QString text = i == 0 ? QString(characters, u'0') : paragraph(random);
            if (i % 100 == 50 && m == messageCount - 1)
                text.replace(300, 16, u"Quicksilver jazz"_s);
            conversation.messages.append(ChatMessage::make(u"user"_s, text));
        }
        QFile file(folder + u'/' + ConversationFile::name(conversation.id));
        if (!file.open(QIODevice::WriteOnly))
            qFatal("The files cannot be made");
        file.write(ConversationFile::encode(conversation).value());
    }
}

QList<QUuid> plainly(const ChatStore &store, const QString &query)
{
    QList<QUuid> found;
    for (const Conversation &conversation : store.conversations()) {
        if (conversation.title.toLower().contains(query) ||
            std::any_of(
                conversation.messages.begin(), conversation.messages.end(),
                [&query](const ChatMessage &message) { return message.content.toLower().contains(query); }))
            found.append(conversation.id);
    }
    return found;
}

struct Keystroke
{
    double whole = 0;   // milliseconds to the painted result
    double busy = 0;    // the longest turn of the event loop
    double busyCpu = 0; // the same, as time on the processor
};

class Window
{
public:
    explicit Window(ChatStore &store) : m_model(store), m_scheduler(&m_view, [this] { m_model.refresh(); })
    {
        m_scheduler.follow(&m_model, &ConversationListModel::outdated);
        m_view.setModel(&m_model);
        m_view.resize(230, 600);
        m_view.show();
        m_model.refresh();
        QApplication::processEvents();
    }

    Keystroke type(const QString &text, const QList<QUuid> &expected)
    {
        Keystroke taken;
        const double start = wallTime();
        const auto turn = [&taken](const auto &work) {
            const double before = wallTime();
            const double cpuBefore = threadTime();
            work();
            taken.busyCpu = qMax(taken.busyCpu, threadTime() - cpuBefore);
            taken.busy = qMax(taken.busy, wallTime() - before);
        };
        turn([this, &text] { m_model.setSearch(text); });
        do
            turn([] { QApplication::processEvents(); });
        while (!shows(expected));
        turn([] { QApplication::processEvents(); }); // paints
        taken.whole = wallTime() - start;
        return taken;
    }

private:
    bool shows(const QList<QUuid> &expected) const
    {
        if (m_model.rowCount() != expected.size())
            return false;
        for (int row = 0; row < expected.size(); ++row) {
            if (m_model.idAt(m_model.index(row)) != expected.at(row))
                return false;
        }
        return true;
    }

    ConversationListModel m_model;
    RowListView m_view;
    RenderScheduler m_scheduler;
};

struct Case
{
    const char *name;
    QString before; // what the field holds already
    QString typed;
};

void measure(Window &window, const ChatStore &store, const Case &one)
{
    const QString query = one.typed.toLower();
    const QList<QUuid> before = plainly(store, one.before.toLower());
    std::vector<double> whole;
    std::vector<double> busy;
    std::vector<double> busyCpu;
    std::vector<double> plain;
    qsizetype count = 0;
    for (int round = -1; round < rounds; ++round) {
        window.type({}, plainly(store, {}));
        window.type(one.before, before);
        const double start = wallTime();
        const QList<QUuid> expected = plainly(store, query);
        const double plainTime = wallTime() - start;
        const Keystroke taken = window.type(one.typed, expected);
        count = expected.size();
        if (round < 0)
            continue;
        plain.push_back(plainTime);
        whole.push_back(taken.whole);
        busy.push_back(taken.busy);
        busyCpu.push_back(taken.busyCpu);
    }
    std::printf("search: %-34s %5lld found  %7.1f ms, plainly %7.1f ms, ratio %5.2f; busy at most %4.1f ms "
                "(%4.1f CPU)\n",
                one.name, static_cast<long long>(count), median(whole), median(plain),
                median(whole) / median(plain), median(busy), median(busyCpu));
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QTemporaryDir folder;
    makeFiles(folder.path());
    ChatStore store(folder.path());
    if (store.conversations().size() != conversationCount)
        qFatal("Not everything was read");
    Window window(store);
    std::printf("search: %d conversations of %d messages of %lld characters, median of %d rounds "
                "(promised: ratio at most 1.00, busy under 16 ms)\n",
                conversationCount, messageCount, static_cast<long long>(characters), rounds);
    const Case cases[] = {
        {"a letter in nearly every message", {}, u"e"_s},
        {"a letter in one of 100", {}, u"J"_s},
        {"a letter that occurs nowhere", {}, u"ж"_s},
        {"a word in one of 100", {}, u"quicksilver"_s},
        {"a word that occurs nowhere", {}, u"quizzical"_s},
        {"two letters, nowhere together", {}, u"q,"_s},
        {"several words, nowhere", {}, u"the answer because the tree of it"_s},
        {"an emoji that occurs nowhere", {}, u"😎"_s},
        {"one more letter, finding less", u"quick"_s, u"quicks"_s},
        {"one letter fewer, finding more", u"quicks"_s, u"quick"_s},
    };
    for (const Case &one : cases)
        measure(window, store, one);
    return 0;
}
