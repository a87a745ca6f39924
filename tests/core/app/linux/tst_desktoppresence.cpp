#include "DesktopServices.h"
#include "core/app/DesktopPresence.h"
#include "platform/launcher/LauncherProgress.h"
#include "platform/power/MachineSleep.h"
#include "support/AppUnderTest.h"
#include "support/OwnSession.h"
#include "support/Table.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Phase = DownloadItem::Phase;

// The program on a desktop whose services stand on the bus of the test's own session.
class DesktopPresenceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        if (!OwnSession::isEntered())
            QSKIP("dbus-run-session and xvfb-run are needed");
        m_desktop.emplace();
        m_isUserHere = false;
        appear(1h);
    }
    void cleanup()
    {
        m_presence.reset();
        m_desktop.reset();
        while (!m_app->queue().items().isEmpty()) {
            m_app->queue().cancel(m_app->queue().items().constFirst().id);
            QVERIFY(AppUnderTest::settles());
        }
        m_app.demo.setFaults({});
    }

    void pullEnds_data()
    {
        const auto row =
            table<QString, QString, bool, QString, QString>("model", "can", "here", "title", "body");
        const QString gone = u"\nI couldn't find a model with that name in the Ollama library."_s;
        row("succeeded", u"a"_s, u"body"_s, false, u"Download finished"_s, u"a"_s);
        row("failed", u"missing"_s, u"body"_s, false, u"Download failed"_s, u"missing"_s + gone);
        row("markup", u"<u>missing&"_s, u"body-markup"_s, false, u"Download failed"_s,
            u"&lt;u&gt;missing&amp;\ninvalid model name"_s);
        row("no markup", u"<u>missing&"_s, u"body"_s, false, u"Download failed"_s,
            u"<u>missing&\ninvalid model name"_s);
        row("the user sees it", u"missing"_s, u"body"_s, true, {}, {});
    }
    void pullEnds()
    {
        QFETCH(const QString, model);
        QFETCH(const QString, can);
        QFETCH(const QString, title);
        QFETCH(const QString, body);
        m_desktop->notifications.capabilities = QStringList{can};
        QFETCH(const bool, here);
        m_isUserHere = here;
        pull(model);
        m_isUserHere = false;
        pull(u"missing-last"_s);
        const auto &shown = m_desktop->notifications.shown;
        QTRY_COMPARE(shown.size(), here ? 1 : 2);
        if (!here) {
            QCOMPARE(shown.constFirst().title, title);
            QCOMPARE(shown.constFirst().body, body);
        }
    }

    void isReplacedAndGoesWithTheProgram()
    {
        pull(u"missing"_s);
        pull(u"missing"_s);
        pull(u"missing-too"_s);
        auto &server = m_desktop->notifications;
        QTRY_COMPARE(server.shown.size(), 3);
        QCOMPARE(server.shown.at(1).id, server.shown.at(0).id);
        QVERIFY(server.shown.at(2).id != server.shown.at(0).id);
        // By then all have been told which number theirs is.
        const QSignalSpy front(&m_presence->presence, &DesktopPresence::frontRequested);
        const auto isClicked = [&] {
            server.click({});
            return !front.isEmpty();
        };
        QTRY_VERIFY(isClicked());
        m_presence.reset();
        QTRY_COMPARE(server.closed.size(), 2);
    }

    void clickLeadsToThePlace()
    {
        m_app.addModel(u"phi3.5"_s);
        const QUuid chat = m_app.newConversation();
        appear(0ms);
        const QSignalSpy front(&m_presence->presence, &DesktopPresence::frontRequested);
        QVERIFY(m_app.isAnswered(u"echo hello"_s, chat));
        auto &server = m_desktop->notifications;
        QTRY_COMPARE(server.shown.size(), 1);
        QCOMPARE(server.shown.constLast().title, u"Reply finished"_s);
        QCOMPARE(server.shown.constLast().body, u"echo hello"_s);
        m_app.newConversation();
        m_app->setTab(AppTab::server);
        const auto isTaken = [&] {
            server.click(u"token_TIME7"_s);
            return !front.isEmpty();
        };
        QTRY_VERIFY(isTaken());
        QCOMPARE(m_app->tab(), AppTab::chat);
        QCOMPARE(m_app->chats().selectedID(), chat);
        QCOMPARE(front.first().first().value<Activation>(), (Activation{"token_TIME7", "token_TIME7"}));

        pull(u"missing"_s);
        QTRY_COMPARE(server.shown.size(), 2);
        const auto isAtModels = [&] {
            server.click({});
            return m_app->tab() == AppTab::models;
        };
        QTRY_VERIFY(isAtModels());
    }

    void briefReplyIsNoNews()
    {
        QVERIFY(m_app.isAnswered(u"echo hello"_s, m_app.newConversation()));
        pull(u"missing"_s);
        QTRY_VERIFY(!m_desktop->notifications.shown.isEmpty());
        QCOMPARE(m_desktop->notifications.shown.constFirst().title, u"Download failed"_s);
    }

    void keepsTheMachineAwakeAndShowsItsProgress()
    {
        m_app.demo.setFaults(u"pull:stall"_s);
        m_app->queue().enqueue(u"late"_s, {});
        QTRY_VERIFY(m_desktop->login.isHeld());
        QCOMPARE(m_desktop->login.asked, QStringList(u"sleep:idle block"_s));
        constexpr uint suspending = 4;
        QTRY_COMPARE(m_desktop->portal.held, suspending);
        QTRY_VERIFY(!m_desktop->launcher.isEmpty());
        QVERIFY(m_desktop->launcher.constLast().value(u"progress-visible"_s).toBool());
        m_app->queue().cancel(u"late"_s);
        QTRY_VERIFY(!m_desktop->login.isHeld());
        QTRY_COMPARE(m_desktop->portal.held, 0U);
        QTRY_VERIFY(!m_desktop->launcher.constLast().value(u"progress-visible"_s).toBool());

        m_app->queue().enqueue(u"late"_s, {});
        QTRY_VERIFY(m_desktop->launcher.constLast().value(u"progress-visible"_s).toBool());
        m_presence.reset();
        QTRY_VERIFY(!m_desktop->launcher.constLast().value(u"progress-visible"_s).toBool());
        QTRY_VERIFY(!m_desktop->login.isHeld());
    }

    void goesOnAfterASleep_data()
    {
        const auto row = table<QString, bool, bool>("fault", "sleeps", "goesOn");
        row("no network", u"pull:no-host"_s, true, true);
        row("given up by the engine", u"pull:max-retries"_s, true, true);
        row("cut", u"pull:no-success"_s, true, true);
        row("full disk", u"pull:no-space"_s, true, false);
        row("no sleep", u"pull:no-host"_s, false, false);
    }
    void goesOnAfterASleep()
    {
        QFETCH(const QString, fault);
        QFETCH(const bool, sleeps);
        QFETCH(const bool, goesOn);
        const QSignalSpy asleep(&*m_presence->sleep, &MachineSleep::begins);
        if (sleeps) {
            Q_EMIT m_desktop->login.PrepareForSleep(true);
            QTRY_COMPARE(asleep.size(), 1);
        }
        m_app.demo.setFaults(fault);
        pull(u"late-"_s + fault.section(u':', 1));
        m_app.demo.setFaults({});
        Q_EMIT m_desktop->login.PrepareForSleep(false);
        const auto &shown = m_desktop->notifications.shown;
        QTRY_COMPARE(shown.size(), 1);
        QCOMPARE(shown.constFirst().title, goesOn ? u"Download finished"_s : u"Download failed"_s);
    }

private:
    // As the program ties it to the desktop.
    struct Presence
    {
        Presence(AppState &state, const bool &isUserHere, std::chrono::milliseconds briefReply)
            : presence(state, {*notifications,
                               *launcher,
                               *sleep,
                               [&] { return isUserHere; },
                               briefReply,
                               {.untilNext = 20ms}})
        {
        }
        const std::unique_ptr<NotificationCenter> notifications = NotificationCenter::ofDesktop();
        const std::unique_ptr<LauncherProgress> launcher = LauncherProgress::ofDesktop();
        const std::unique_ptr<MachineSleep> sleep = MachineSleep::ofSystem();
        DesktopPresence presence;
    };

    void appear(std::chrono::milliseconds briefReply)
    {
        m_presence.reset();
        m_presence.emplace(*m_app, m_isUserHere, briefReply);
    }

    void pull(const QString &model)
    {
        m_app->queue().enqueue(model, {});
        const auto isOver = [&] {
            const DownloadItem *const item = m_app->queue().item(model);
            return !item || item->phase.kind == Phase::failed;
        };
        QTRY_VERIFY(isOver());
    }

    AppUnderTest m_app;
    bool m_isUserHere = false;
    std::optional<DesktopServices> m_desktop;
    std::optional<Presence> m_presence;
};

int main(int argc, char **argv)
{
    if (const std::optional<int> status = OwnSession::run(argc, argv))
        return *status;
    if (OwnSession::isEntered())
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", qgetenv("DBUS_SESSION_BUS_ADDRESS"));
    const QCoreApplication application(argc, argv);
    DesktopPresenceTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "moc_DesktopServices.cpp"
#include "tst_desktoppresence.moc"
