#include "platform/appearance/linux/SettingsPortal.h"
#include "support/DesktopPortal.h"
#include "support/OwnSession.h"
#include "support/Table.h"

#include <QCoreApplication>

#include <optional>

using namespace Qt::StringLiterals;

// On a session bus of the test's own, with a portal that says what the test wants.
class SettingsPortalTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!OwnSession::isEntered())
            QSKIP("dbus-run-session and xvfb-run are needed");
    }

    void cleanup() { m_portal->leave(); }

    // First, while Qt knows no type of the portal's yet but what the program itself has told it.
    void comesLate()
    {
        const QString appearance = u"org.freedesktop.appearance"_s;
        const SettingsPortal portal;
        QCOMPARE(portal.wishes(), AppearanceWishes());
        m_portal.emplace();
        m_portal->set(appearance, u"color-scheme"_s, 1U);
        QVERIFY(m_portal->come());
        QTRY_COMPARE(portal.wishes().scheme, AppearanceWishes::Scheme::dark);
        m_portal->announce(appearance, u"color-scheme"_s, 2U);
        QTRY_COMPARE(portal.wishes().scheme, AppearanceWishes::Scheme::light);
    }

    void wishes_data()
    {
        using Scheme = AppearanceWishes::Scheme;
        const auto row =
            table<QString, QString, QVariant, AppearanceWishes>("space", "key", "value", "wishes");
        const QString appearance = u"org.freedesktop.appearance"_s;
        const QString scheme = u"color-scheme"_s;
        const QString accent = u"accent-color"_s;
        row("dark", appearance, scheme, 1U, {.scheme = Scheme::dark});
        row("light", appearance, scheme, 2U, {.scheme = Scheme::light});
        row("unknown scheme", appearance, scheme, 7U, {});
        row("scheme of a wrong type", appearance, scheme, u"dark"_s, {});
        row("contrast", appearance, u"contrast"_s, 1U, {.moreContrast = true});
        row("accent", appearance, accent, DesktopPortal::color(1, 0.5, 0), {.accent = 0xffff8000});
        row("no accent", appearance, accent, DesktopPortal::color(-1, -1, -1), {});
        row("accent of a wrong type", appearance, accent, u"red"_s, {});
        row("less motion", appearance, u"reduced-motion"_s, 1U, {.lessMotion = true});
        row("no animations", u"org.gnome.desktop.interface"_s, u"enable-animations"_s, false,
            {.lessMotion = true});
        row("somebody else's", u"org.example"_s, scheme, 1U, {});
    }

    // Found at the start, and heard of later.
    void wishes()
    {
        QFETCH(const QString, space);
        QFETCH(const QString, key);
        QFETCH(const QVariant, value);
        QFETCH(const AppearanceWishes, wishes);
        m_portal->set(space, key, value);
        QVERIFY(m_portal->come());
        const SettingsPortal told;
        QCOMPARE(told.wishes(), wishes);

        m_portal->forget();
        const SettingsPortal hears;
        QCOMPARE(hears.wishes(), AppearanceWishes());
        m_portal->announce(space, key, value);
        QTRY_COMPARE(hears.wishes(), wishes);
    }

private:
    std::optional<DesktopPortal> m_portal;
};

int main(int argc, char **argv)
{
    if (const std::optional<int> status = OwnSession::run(argc, argv))
        return *status;
    const QCoreApplication application(argc, argv);
    SettingsPortalTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_settingsportal.moc"
