#include "platform/loginitem/linux/AutostartEntry.h"
#include "support/SettingsOnScreen.h"
#include "support/SmallVolume.h"
#include "support/TestFolder.h"
#include "support/Unprivileged.h"

#include <sys/mount.h>

using namespace Qt::StringLiterals;

namespace {

const QString failure = u"Could not change this setting: "_s;

} // namespace

// The switch of the settings window on a real autostart folder.
class LoginSwitchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsWhatIsThere()
    {
        QVERIFY(!isOn());
        click();
        QVERIFY(isOn() && QDir(m_autostart).entryList(QDir::Files).size() == 1);
        m_app.reopen();
        QVERIFY(isOn());
        QVERIFY(QDir(m_autostart).removeRecursively()); // as the desktop's own settings may
        m_app.reopen();
        QVERIFY(!isOn());
    }

    void saysThatItMayNotWrite()
    {
        QVERIFY(QDir().mkpath(m_autostart));
        permit(0x5555); // reached and read by everyone, written by none
        {
            const Unprivileged user;
            if (!user.is())
                QSKIP("The superuser may not become another user here, and permissions do not stop him");
            click();
            QVERIFY(!isOn() && m_app.shows(failure + u"Permission denied"_s));
        }
        permit(0x7700);
        click();
        QVERIFY(isOn() && !m_app.shows(failure + u"Permission denied"_s));
        m_item.disable();
    }

    void saysThatTheVolumeTakesNothing()
    {
        const SmallVolume volume(m_autostart, 1'000'000);
        if (!volume.refusal().isEmpty())
            QSKIP(qUtf8Printable(volume.refusal()));
        m_item.enable();
        const QByteArray place = QFile::encodeName(m_autostart);
        QCOMPARE(mount(nullptr, place.constData(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
        m_app.reopen();
        click();
        QVERIFY(isOn()); // it is still there
        QVERIFY(m_app.shows(failure + u"Read-only file system"_s));
    }

private:
    void click() { m_app.click(u"Launch at login"_s); }
    bool isOn() { return m_app.button(u"Launch at login"_s)->isChecked(); }
    void permit(int permissions) const
    {
        for (const QString &path : {m_folder.path(), m_autostart})
            QVERIFY(QFile::setPermissions(path, QFile::Permissions(permissions)));
    }

    const TestFolder m_folder;
    const QString m_autostart = m_folder.filePath(u"autostart"_s);
    AutostartEntry m_item{m_autostart, QCoreApplication::applicationFilePath()};
    SettingsOnScreen m_app{m_item};
};

QTEST_MAIN(LoginSwitchTest)
#include "tst_loginswitch.moc"
