#include "platform/desktop/linux/XcbAtom.h"
#include "platform/tray/TrayHost.h"
#include "support/AppUnderTest.h"
#include "support/DesktopTray.h"
#include "support/OwnSession.h"
#include "ui/app/StatusItem.h"

#include <QApplication>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

// A tray that takes no items in; to be one, it is enough to say so.
class OlderTray
{
public:
    OlderTray()
    {
        auto *const connection = qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
        const auto window = xcb_window_t(m_window.winId());
        const xcb_atom_t selection = xcbAtom(connection, "_NET_SYSTEM_TRAY_S0");
        xcb_set_selection_owner(connection, window, selection, XCB_CURRENT_TIME);
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
        xcb_client_message_event_t news = {};
        news.response_type = XCB_CLIENT_MESSAGE;
        news.format = 32;
        news.window = root;
        news.type = xcbAtom(connection, "MANAGER");
        news.data.data32[1] = selection;
        news.data.data32[2] = window;
        xcb_send_event(connection, 0, root, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                       reinterpret_cast<const char *>(&news));
        xcb_flush(connection);
    }

private:
    QWindow m_window;
};

} // namespace

// One process, in the order of a session: what Qt settles with the first item lasts.
class OlderTrayTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!OwnSession::isEntered())
            QSKIP("dbus-run-session and xvfb-run are needed");
        m_app.sandbox.defaults().set(u"showMenuBar"_s, true);
    }

    void comesAndGoes()
    {
        QVERIFY(!m_item.isShown());
        m_tray.emplace();
        QTRY_VERIFY(m_item.isShown());
        m_tray.reset();
        QTRY_VERIFY(!m_item.isShown());
        m_tray.emplace();
        QTRY_VERIFY(m_item.isShown());
    }

    void aLaterTrayOnTheBusIsNoPlaceForIt()
    {
        QVERIFY(m_bus.come());
        m_tray.reset();
        QTRY_VERIFY(!m_item.isShown());
        QCOMPARE(m_bus.items(), 0);
    }

private:
    DesktopTray m_bus;
    AppUnderTest m_app;
    std::optional<OlderTray> m_tray;
    const std::unique_ptr<TrayHost> m_host = TrayHost::ofDesktop();
    StatusItem m_item{*m_app, m_app.desktop, m_app.sandbox.defaults(), *m_host};
};

int main(int argc, char **argv)
{
    if (const std::optional<int> status = OwnSession::run(argc, argv))
        return *status;
    QApplication application(argc, argv);
    OlderTrayTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_oldertray.moc"
