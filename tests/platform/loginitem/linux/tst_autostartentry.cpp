#include "platform/loginitem/linux/AutostartEntry.h"
#include "support/Table.h"
#include "support/TestFolder.h"

using namespace Qt::StringLiterals;

class AutostartEntryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsWhatIsThere_data()
    {
        const auto row = table<QByteArray, bool>("entry", "enabled");
        const QByteArray usual = "[Desktop Entry]\nExec=tarnwick\n";
        row("spaced", "# mine\r\n[Desktop Entry]\r\nExec = /opt/a b\r\n", true);
        row("hidden", usual + "Hidden=true\n", false);
        row("not hidden", usual + "Hidden=false\n", true);
        row("switched off", usual + "X-GNOME-Autostart-enabled=false", false);
        row("nothing to start", "[Desktop Entry]\nType=Application\n", false);
        row("an action's program", "[Desktop Entry]\nName=a\n[Desktop Action b]\nExec=tarnwick\n", false);
        row("gone", usual + "TryExec=/opt/gone/tarnwick\n", false);
        row("on the search path", usual + "TryExec=sh\n", true);
    }

    void showsWhatIsThere()
    {
        QFETCH(const QByteArray, entry);
        const TestFolder folder;
        folder.put(u"tarnwick.desktop"_s, entry);
        AutostartEntry item(folder.path(), QCoreApplication::applicationFilePath());
        QTEST(item.isEnabled(), "enabled");

        // Whatever stood there, switching it on or off works.
        item.enable();
        QVERIFY(item.isEnabled());
        item.disable();
        QVERIFY(!item.isEnabled());
    }

    void eachProfileHasItsOwn()
    {
        const TestFolder folder;
        const QString autostart = folder.filePath(u"config/autostart"_s);
        AutostartEntry item(autostart, u"/bin/sh"_s);
        AutostartEntry profile(autostart, u"/bin/sh"_s, {u"--profile"_s, u"/a b"_s});
        item.disable();
        QVERIFY(!item.isEnabled() && !QFileInfo::exists(autostart));
        item.enable();
        QVERIFY(item.isEnabled() && !profile.isEnabled());
        profile.enable();
        item.disable();
        QVERIFY(profile.isEnabled() && !item.isEnabled());
        QVERIFY(!AutostartEntry(autostart, u"/bin/sh"_s, {u"--profile"_s, u"/a c"_s}).isEnabled());
    }

    void namesAnyProgram_data();
    void namesAnyProgram()
    {
        QFETCH(const QString, program);
        QFETCH(const QByteArray, line);
        const TestFolder folder;
        AutostartEntry(folder.path(), program).enable();
        const QByteArray entry = folder.contentOf(u"tarnwick.desktop"_s);
        QVERIFY(entry.startsWith("[Desktop Entry]\n"));
        QVERIFY2(entry.split('\n').contains(line), entry.constData());
    }

    // Read back by the switch itself, whatever the path.
    void findsItsProgram()
    {
        const TestFolder folder;
        const QString program = folder.filePath(u"a\\n \"b\"\nc %f $d"_s);
        QVERIFY(QFile::link(u"/bin/sh"_s, program));
        AutostartEntry item(folder.filePath(u"autostart"_s), program, {u"--profile"_s, u"/e f/%g"_s});
        item.enable();
        QVERIFY(item.isEnabled());
        const QStringList entries = QDir(folder.filePath(u"autostart"_s)).entryList(QDir::Files);
        QCOMPARE(entries.size(), 1);
        const QByteArray entry = folder.contentOf(u"autostart/"_s + entries.first());
        QVERIFY(entry.contains("\" \"--profile\" \"/e f/%%g\"\n"));
        QVERIFY(QFile::remove(program));
        QVERIFY(!item.isEnabled());
    }
};

// Behind the class: moc loses its way in texts like these.
void AutostartEntryTest::namesAnyProgram_data()
{
    const auto row = table<QString, QByteArray>("program", "line");
    row("spaces", u"/opt/my apps/tarnwick"_s, "Exec=\"/opt/my apps/tarnwick\"");
    row("field code", u"/opt/100%f/tarnwick"_s, "Exec=\"/opt/100%%f/tarnwick\"");
    row("shell", u"/opt/$(a)`b`\"c\"/t"_s, R"(Exec="/opt/\\$(a)\\`b\\`\\"c\\"/t")");
    row("backslash", uR"(/opt/a\nb/t)"_s, R"(Exec="/opt/a\\\\nb/t")");
    row("line break", u"/opt/a\nb/t"_s, R"(Exec="/opt/a\nb/t")");
    row("letters", u"/opt/größe/t"_s, "Exec=\"/opt/größe/t\""_ba);
}

QTEST_GUILESS_MAIN(AutostartEntryTest)
#include "tst_autostartentry.moc"
