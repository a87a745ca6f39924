// Does what a newcomer does, with the real windows and the demonstration engine, tells what happens and
// leaves pictures of each screen. Ends with 0 only if all of it happened.
//   tarnwick-tour FOLDER    where the pictures go
#include "Newcomer.h"
#include "ReplyTeller.h"
#include "core/models/Fmt.h"
#include "core/models/ModelCatalog.h"
#include "platform/appearance/AppearanceSource.h"
#include "support/NoLoginItem.h"
#include "ui/app/Appearance.h"
#include "ui/app/SettingsView.h"
#include "ui/app/Translations.h"

#include <QApplication>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

const QString thinker = u"qwen3:0.6b"_s; // small, and it reasons aloud

// Waits until `model` is installed, telling the progress of its download a few times; `onHalf` is called
// underway.
void watchDownload(Newcomer &newcomer, const QString &model, const std::function<void()> &onHalf)
{
    qint64 told = 0; // tenths
    bool half = false;
    newcomer.waitUntil(u"%1 is downloaded"_s.arg(model), [&] {
        const DownloadItem *const item = newcomer.state().queue().item(model);
        const qint64 tenth = item && item->total > 0 ? 10 * item->completed / item->total : 0;
        if (item && tenth >= told + 2) {
            told = tenth;
            Newcomer::tell(u"  "_s + Fmt::progress(*item));
        }
        if (tenth >= 5 && !std::exchange(half, true))
            onHalf();
        return newcomer.state().isInstalled(model);
    });
}

const ChatMessage &lastMessage(Newcomer &newcomer)
{
    const ChatStore &chats = newcomer.state().chats();
    return chats.find(*chats.selectedID())->messages.last();
}

// Says `message` and waits for the end of the reply; `meanwhile` is called once some of the answer has come.
void talk(Newcomer &newcomer, const QString &message, const std::function<void()> &meanwhile = [] {})
{
    Newcomer::tell(u"\n  you: "_s + message);
    const ReplyTeller teller(newcomer.state());
    newcomer.say(message);
    newcomer.waitUntil(u"the model answers"_s, [&] {
        return newcomer.state().generatingID() && lastMessage(newcomer).content.size() > 100;
    });
    meanwhile();
    newcomer.waitUntil(u"the reply ends"_s, [&] { return !newcomer.state().generatingID(); });
    if (newcomer.state().banner())
        throw Disappointment(newcomer.state().banner()->toStdString());
}

void meetTheGuide(Newcomer &newcomer)
{
    const QString best = ModelCatalog::bestPick(newcomer.state().memory()).name;
    Newcomer::tell(u"The guide proposes %1 for this machine; downloading it."_s.arg(best));
    newcomer.takePicture(u"guide"_s);
    newcomer.click(u"Download "_s + best);
    watchDownload(newcomer, best, [&] { newcomer.takePicture(u"guide-downloading"_s); });
    newcomer.click(u"Open a chat"_s);
}

void haveAFirstChat(Newcomer &newcomer)
{
    Newcomer::tell(u"\nA first chat."_s);
    talk(newcomer, u"What can you do for me?"_s, [&] { newcomer.takePicture(u"chat-streaming"_s); });
    newcomer.takePicture(u"chat"_s);
}

void chatWithReasoning(Newcomer &newcomer)
{
    Newcomer::tell(u"\nA second model, one that reasons: %1."_s.arg(thinker));
    newcomer.press(Qt::Key_1);
    if (!newcomer.state().isInstalled(thinker)) {
        newcomer.click(u"Download"_s, thinker);
        watchDownload(newcomer, thinker, [&] { newcomer.takePicture(u"models"_s); });
    }
    newcomer.click(u"Chat"_s, thinker);
    talk(newcomer, u"How do you come to an answer?"_s);
    if (lastMessage(newcomer).parsed().thinking.isEmpty())
        throw Disappointment("The reasoning did not show.");
    newcomer.takePicture(u"chat-with-reasoning"_s);
}

void stopAReply(Newcomer &newcomer)
{
    Newcomer::tell(u"\nA long reply, stopped."_s);
    const QString words = u"repeat 100000 word"_s;
    constexpr qsizetype wholeLength = 100'000 * 5 - 1;
    talk(newcomer, words, [&] { newcomer.click(u"Stop"_s); });
    const qsizetype arrived = lastMessage(newcomer).parsed().answer.size();
    if (arrived == 0 || arrived >= wholeLength)
        throw Disappointment("The reply was not stopped in the middle, or what had arrived is gone.");
}

void lookAtTheServer(Newcomer &newcomer)
{
    Newcomer::tell(u"\nThe server screen and the settings."_s);
    newcomer.press(Qt::Key_3);
    newcomer.waitUntil(u"the server runs"_s, [&] {
        return newcomer.state().engine().state().kind == EngineManager::State::running;
    });
    newcomer.takePicture(u"server"_s);
    newcomer.click(u"Stop server"_s);
    newcomer.waitUntil(u"the server stops"_s, [&] { return !newcomer.state().engine().isOn(); });
    newcomer.takePicture(u"server-stopped"_s);
    NoLoginItem loginItem;
    SettingsView settings(newcomer.state(), newcomer.desktop(), newcomer.defaults(), loginItem,
                          &newcomer.window());
    settings.show();
    newcomer.waitUntil(u"the settings open"_s, [&] { return settings.isVisible(); });
    newcomer.takePicture(u"settings"_s, &settings);
}

int goOnTour(const QString &pictures)
{
    Newcomer newcomer(pictures);
    try {
        meetTheGuide(newcomer);
        haveAFirstChat(newcomer);
        chatWithReasoning(newcomer);
        stopAReply(newcomer);
        lookAtTheServer(newcomer);
        newcomer.quit();
    } catch (const Disappointment &) {
        newcomer.takePicture(u"where-it-ended"_s);
        throw;
    }
    Newcomer::tell(u"\nAll of it happened."_s);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication::setApplicationName(u"Tarnwick"_s);
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const Translations words{QLocale(QLocale::English)};
    const std::unique_ptr<AppearanceSource> wishes = AppearanceSource::ofDesktop();
    const Appearance appearance(*wishes);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2) {
        std::fputs("usage: tarnwick-tour FOLDER\n", stderr);
        return EXIT_FAILURE;
    }
    try {
        return goOnTour(arguments.last());
    } catch (const Disappointment &disappointment) {
        std::fprintf(stderr, "\nThe tour ended early. %s\n", disappointment.what());
        return EXIT_FAILURE;
    }
}
