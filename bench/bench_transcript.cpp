// What the transcript costs while a reply arrives, as ratios taken in one run: a chunk at the end of a long
// reply against one of a short reply, of a long conversation against a short one, and so on. Times are those
// of the main thread's processor, from the chunk's arrival to its painted frame, unless said otherwise.
#include "Figures.h"
#include "core/chat/ChatStore.h"
#include "platform/desktop/Desktop.h"
#include "ui/chat/MessageInput.h"
#include "ui/chat/transcript/Transcript.h"

#include <QApplication>
#include <QInputDevice>
#include <QKeyEvent>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <numeric>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int shortReply = 2'000;
constexpr int longReply = 200'000;
constexpr int chunksAtATime = 100;
constexpr int rounds = 5;

using Costs = std::vector<double>; // milliseconds

double percentile95(Costs costs)
{
    std::sort(costs.begin(), costs.end());
    return costs[costs.size() * 95 / 100];
}

double mean(const Costs &costs)
{
    return std::accumulate(costs.begin(), costs.end(), 0.0) / static_cast<double>(costs.size());
}

// Knows when a window has been painted and its picture handed on.
class Application : public QApplication
{
public:
    using QApplication::QApplication;

    bool notify(QObject *receiver, QEvent *event) override
    {
        const bool isUpdate = event->type() == QEvent::UpdateRequest && receiver->isWidgetType();
        const bool handled = QApplication::notify(receiver, event);
        if (isUpdate && onFrame)
            onFrame();
        return handled;
    }

    std::function<void()> onFrame;
};

Application &application()
{
    return *static_cast<Application *>(QCoreApplication::instance());
}

class NoDesktop final : public Desktop
{
    Task<std::optional<QString>> chooseSaveFile(QString) override { co_return std::nullopt; }
    Task<std::optional<QString>> chooseFile(QString) override { co_return std::nullopt; }
    void copyText(const QString &) override {}
    void revealInFileManager(const QString &) override {}
    void bringToFront() override {}
};

NoDesktop desktop;

QString prose(int size)
{
    constexpr int paragraph = 400;
    QString text;
    while (text.size() < size) {
        QString words;
        for (int i = 0; words.size() < paragraph - 12; ++i)
            words += i % 9 == 0 ? u"**bold** "_s : i % 7 == 0 ? u"`code` "_s : u"some words "_s;
        text += words + u"\n\n"_s;
    }
    return text.first(size);
}

QString codeLines(int size)
{
    QString text;
    for (int i = 0; text.size() < size; ++i)
        text += u"    const auto value%1 = compute(first, second); // of line %1\n"_s.arg(i);
    return text.first(size);
}

Conversation conversationOf(int messages)
{
    Conversation conversation = Conversation::make({});
    for (int i = 0; i < messages; ++i) {
        const QString role = i % 2 == 0 ? u"user"_s : u"assistant"_s;
        conversation.messages += ChatMessage::make(role, prose(100 + 300 * (i % 2)));
    }
    return conversation;
}

// A conversation that grows in a store, and the transcript that shows it.
class Chat
{
public:
    Chat(int messages, const QString &start)
    {
        m_store.newConversation({});
        m_id = *m_store.selectedID();
        m_store.mutate(m_id, [&](Conversation &conversation) {
            conversation.messages = conversationOf(messages).messages;
            conversation.messages.last().content = start;
        });
        m_view.resize(800, 600);
        m_view.show();
        show();
        while (!m_view.isSettled())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        append(u"."_s);
    }

    // What it costs to take in and to paint the chunk.
    double append(const QString &chunk)
    {
        const double start = threadTime();
        m_store.mutate(m_id,
                       [&](Conversation &conversation) { conversation.messages.last().content += chunk; });
        show();
        nextFrame();
        return threadTime() - start;
    }

    // Of many small chunks.
    Costs appendAll(QStringView text)
    {
        constexpr int chunk = 5;
        Costs costs;
        for (int i = 0; i < chunksAtATime; ++i)
            costs.push_back(append(text.sliced((i * chunk) % (text.size() - chunk), chunk).toString()));
        return costs;
    }

private:
    void show() { m_view.showConversation(*m_store.find(m_id), true); }

    void nextFrame()
    {
        bool isPainted = false;
        application().onFrame = [this, &isPainted] { isPainted |= m_view.isSettled(); };
        while (!isPainted)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        application().onFrame = nullptr;
    }

    QTemporaryDir m_folder;
    ChatStore m_store{m_folder.path()};
    QUuid m_id;
    Transcript m_view{desktop};
};

int missed = 0;

void report(const char *what, double value, double base, double most)
{
    const double ratio = value / base;
    const bool isMet = ratio <= most;
    missed += isMet ? 0 : 1;
    std::printf("%-58s %8.3f / %8.3f  = %5.2f  (at most %.1f)%s\n", what, value, base, ratio, most,
                isMet ? "" : "  MISSED");
    std::fflush(stdout);
}

// Both take turns, so that what else the machine does falls on both.
void compareChunks(const char *what, Chat &longer, Chat &shorter, const QString &chunks, double most)
{
    Costs longCosts;
    Costs shortCosts;
    for (int i = 0; i < rounds; ++i) {
        shortCosts.push_back(mean(shorter.appendAll(chunks)));
        longCosts.push_back(mean(longer.appendAll(chunks)));
    }
    report(what, median(longCosts), median(shortCosts), most);
}

void compareReplies()
{
    {
        Chat longer(2, prose(longReply));
        Chat shorter(2, prose(shortReply));
        compareChunks("ms a chunk, paragraphs, 200,000 characters / 2,000", longer, shorter, prose(1000),
                      1.3);
    }
    {
        Chat longer(2, u"```cpp\n"_s + codeLines(longReply));
        Chat shorter(2, u"```cpp\n"_s + codeLines(shortReply));
        compareChunks("ms a chunk, one code block, 200,000 / 2,000", longer, shorter, codeLines(1000), 1.3);
    }
    const QString line = u"some words, "_s;
    {
        Chat longer(2, line.repeated(longReply / line.size()));
        Chat shorter(2, line.repeated(shortReply / line.size()));
        compareChunks("ms a chunk, one line, 200,000 / 2,000", longer, shorter, line.repeated(50), 20);
    }
    {
        Chat longer(2, u"```\n"_s + line.repeated(longReply / line.size()));
        Chat shorter(2, u"```\n"_s + line.repeated(shortReply / line.size()));
        compareChunks("ms a chunk, one line of code, 200,000 / 2,000", longer, shorter, line.repeated(50),
                      20);
    }
    {
        Chat longer(2'000, prose(shortReply));
        Chat shorter(2, prose(shortReply));
        compareChunks("ms a chunk, 2,000 messages / 2", longer, shorter, prose(1000), 1.3);
    }
}

void compareClosing()
{
    Costs closing;
    Costs ordinary;
    for (int i = 0; i < 2 * rounds; ++i) {
        Chat chat(2, u"```cpp\n"_s + codeLines(100'000));
        for (const double cost : chat.appendAll(codeLines(1000)))
            ordinary.push_back(cost);
        double dearest = 0;
        for (const QString &chunk : {u"\n"_s, u"``"_s, u"`"_s, u"\n"_s, u"\nSo"_s})
            dearest = std::max(dearest, chat.append(chunk));
        closing.push_back(dearest);
    }
    report("ms of the chunk that closes 100,000 of code / any", median(closing), median(ordinary), 5);
}

void compareOpening()
{
    const Conversation longer = conversationOf(2'000);
    const Conversation shorter = conversationOf(20);
    QWidget window;
    window.resize(800, 600);
    auto *const column = new QVBoxLayout(&window);
    window.show();
    std::unique_ptr<Transcript> shown;
    const auto open = [&](const Conversation &conversation) {
        shown.reset();
        QCoreApplication::processEvents();
        const double start = wallTime();
        shown = std::make_unique<Transcript>(desktop);
        column->addWidget(shown.get());
        shown->showConversation(conversation, false);
        bool isPainted = false;
        application().onFrame = [&] { isPainted |= shown->isSettled(); };
        while (!isPainted)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        application().onFrame = nullptr;
        return wallTime() - start;
    };
    Costs longCosts;
    Costs shortCosts;
    for (int i = 0; i < 4 * rounds; ++i) {
        shortCosts.push_back(open(shorter));
        longCosts.push_back(open(longer));
    }
    report("ms on the clock to open 2,000 messages / 20", median(longCosts), median(shortCosts), 3);
    const auto widgets = [&](int messages) {
        open(conversationOf(messages));
        return static_cast<double>(QApplication::allWidgets().size());
    };
    const double many = widgets(2'000);
    report("widgets with 2,000 messages / 50", many, widgets(50), 1.5);
}

// The window of a chat pane: the transcript with an input below it, whose keys another thread presses.
class Typing
{
public:
    Typing()
    {
        auto *const column = new QVBoxLayout(&m_window);
        column->addWidget(&m_view, 1);
        column->addWidget(&m_input);
        m_window.resize(800, 700);
        m_window.show();
        m_conversation = conversationOf(20);
        m_conversation.messages.last().content = prose(20'000);
        m_view.showConversation(m_conversation, true);
        m_input.setFocus();
        QObject::connect(&m_chunks, &QTimer::timeout, &m_view, [this] {
            m_conversation.messages.last().content +=
                m_text.sliced((5 * m_arrived++) % (m_text.size() - 5), 5);
            m_view.showConversation(m_conversation, true);
        });
        m_chunks.setTimerType(Qt::PreciseTimer);
    }

    ~Typing() { application().onFrame = nullptr; }

    // From each press to the end of the frame that shows its glyph.
    Costs press(int presses, bool whileStreaming)
    {
        constexpr int interval = 5; // milliseconds
        if (whileStreaming)
            m_chunks.start(interval);
        Costs latencies;
        std::atomic<double> pressed = 0;
        std::atomic<int> shown = 0;
        application().onFrame = [&] {
            if (m_input.toPlainText().size() > shown.load() && pressed.load() > 0) {
                latencies.push_back(wallTime() - pressed.load());
                pressed = 0;
                ++shown;
            }
        };
        m_input.clear();
        QCoreApplication::processEvents();
        std::thread fingers([&] {
            QRandomGenerator random(1);
            for (int i = 0; i < presses; ++i) {
                std::this_thread::sleep_for(std::chrono::microseconds(random.bounded(10'000, 50'000)));
                pressed = wallTime();
                QCoreApplication::postEvent(&m_input, new QKeyEvent(QEvent::KeyPress, Qt::Key_A, {}, u"a"_s));
                while (shown.load() <= i)
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        });
        while (shown.load() < presses)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        fingers.join();
        m_chunks.stop();
        return latencies;
    }

private:
    const QString m_text = prose(1000);
    QWidget m_window;
    Transcript m_view{desktop};
    MessageInput m_input;
    Conversation m_conversation;
    QTimer m_chunks;
    int m_arrived = 0;
};

void compareTyping()
{
    constexpr int presses = 300;
    Typing typing;
    typing.press(20, true);
    const Costs atRest = typing.press(presses, false);
    const Costs streaming = typing.press(presses, true);
    report("ms from key to glyph, 200 chunks a second / none, median", median(streaming), median(atRest), 2);
    report("the same, 95th percentile", percentile95(streaming), percentile95(atRest), 2);
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    Application application(argc, argv);
    QInputDevice::primaryKeyboard(); // made here, since it may be made by the main thread only
    compareReplies();
    compareClosing();
    compareOpening();
    compareTyping();
    return missed == 0 ? 0 : 1;
}
