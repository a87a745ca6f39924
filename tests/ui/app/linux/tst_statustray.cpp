#include "platform/tray/TrayHost.h"
#include "support/AppUnderTest.h"
#include "support/DesktopTray.h"
#include "support/OwnSession.h"
#include "ui/app/StatusItem.h"

#include <QApplication>
#include <QSignalSpy>

using namespace Qt::StringLiterals;

// One process, in the order of a session whose tray comes late: what Qt remembers of a first no lasts.
class StatusTrayTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!OwnSession::isEntered())
            QSKIP("dbus-run-session and xvfb-run are needed");
        m_app.sandbox.defaults().set(u"showMenuBar"_s, true);
    }

    void comes()
    {
        const QSignalSpy shown(&m_item, &StatusItem::shownChanged);
        QVERIFY(!m_item.isShown());
        QVERIFY(m_tray.come());
        QTRY_VERIFY(m_item.isShown());
        QTRY_COMPARE(m_tray.items(), 1);
        QCOMPARE(shown.size(), 1);
    }

    void followsTheSetting()
    {
        m_app.sandbox.defaults().set(u"showMenuBar"_s, false);
        QVERIFY(!m_item.isShown());
        m_app.sandbox.defaults().set(u"showMenuBar"_s, true);
        QVERIFY(m_item.isShown());
        QTRY_COMPARE(m_tray.items(), 2);
    }

    void isShownOnlyInATrayThatShowsItems()
    {
        QVERIFY(m_tray.setShown(false));
        QTRY_VERIFY(!m_item.isShown());
        QVERIFY(m_tray.setShown(true));
        QTRY_VERIFY(m_item.isShown());
        QVERIFY(m_tray.leave());
        QTRY_VERIFY(!m_item.isShown());
        QVERIFY(m_tray.come());
        QTRY_VERIFY(m_item.isShown());
    }

private:
    DesktopTray m_tray;
    AppUnderTest m_app;
    const std::unique_ptr<TrayHost> m_host = TrayHost::ofDesktop();
    StatusItem m_item{*m_app, m_app.desktop, m_app.sandbox.defaults(), *m_host};
};

int main(int argc, char **argv)
{
    if (const std::optional<int> status = OwnSession::run(argc, argv))
        return *status;
    QApplication application(argc, argv);
    StatusTrayTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_statustray.moc"
