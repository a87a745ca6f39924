#include "platform/defaults/UserDefaults.h"
#include "support/Table.h"
#include "support/TestFolder.h"
#include "support/Unprivileged.h"

#include <QSignalSpy>
#include <QTest>

#include <cstdlib>
#include <optional>

using namespace Qt::StringLiterals;

class UserDefaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reachesTheDiskAtOnce()
    {
        const TestFolder folder;
        const QByteArray bytes("{\"a\":1}\0\xff", 9);
        const QString path = u"@/a, b/“ollama” = 1;2"_s;
        UserDefaults writer(folder.filePath(u"profile/settings.ini"_s));
        const QSignalSpy changes(&writer, &UserDefaults::changed);
        writer.set(u"off"_s, false);
        writer.set(u"off"_s, false);
        writer.set(u"path"_s, path);
        writer.set(u"settings"_s, bytes);
        writer.set(u"port"_s, 4711);
        writer.remove(u"port"_s);
        writer.remove(u"port"_s);
        QCOMPARE(changes.size(), 5);
        QCOMPARE(changes.last().first().toString(), u"port"_s);

        QCOMPARE(folder.modeOf(u"profile/settings.ini"_s), 0600);
        QCOMPARE(folder.modeOf(u"profile"_s), 0700);
        // Of a copy, since readers of one file in one process share what they know.
        UserDefaults reader(folder.put(u"copy.ini"_s, folder.contentOf(u"profile/settings.ini"_s)));
        reader.registerDefault(u"off"_s, true);
        QVERIFY(!reader.boolean(u"off"_s));
        QCOMPARE(reader.string(u"path"_s), path);
        QCOMPARE(reader.data(u"settings"_s), bytes);
        QCOMPARE(reader.integer(u"port"_s), 0);
    }

    void readsTextsAsTheirTypes()
    {
        const TestFolder folder;
        UserDefaults defaults(folder.put(
            u"settings.ini"_s, "[General]\nfalse=false\nport=4711\nhuge=4711471147114711\nfraction=1.5\n"
                               "list=0, 0\nbytes=@ByteArray(0)\n"));
        for (const QString &key : {u"false"_s, u"port"_s, u"huge"_s, u"fraction"_s, u"list"_s, u"bytes"_s}) {
            defaults.registerDefault(key, true);
            QCOMPARE(defaults.boolean(key), key != "false"_L1);
            QCOMPARE(defaults.integer(key), key == "port"_L1 ? 4711 : 0);
            QCOMPARE(defaults.data(key).has_value(), key == "bytes"_L1);
            QCOMPARE(defaults.string(key).has_value(), key != "bytes"_L1 && key != "list"_L1);
        }
    }

    void whateverStandsInTheFilesPlace_data()
    {
        const auto row = table<QByteArray, int, bool>("script", "port", "kept");
        row("a pipe", "mkfifo settings.ini", 0, false);
        row("a link to a pipe", "mkfifo pipe; ln -s pipe settings.ini", 0, false);
        row("a folder", "mkdir settings.ini", 0, false);
        row("a huge file", "dd if=/dev/null of=settings.ini bs=1048576 seek=40000 2>/dev/null", 0, false);
        row("one that cannot be read", "echo port=1 > settings.ini; chmod 0 settings.ini", 0, false);
        row("one with damage", "printf '[General\n\1\377=\nport=2\n]port=\n' > settings.ini", 2, true);
        row("a link to a file", "echo port=3 > file; ln -s file settings.ini", 3, true);
        row("a lock of a killed program", "echo port=4 > settings.ini; echo $$ > settings.ini.lock", 4, true);
        row("a pipe for a lock", "echo port=5 > settings.ini; mkfifo settings.ini.lock", 5, true);
    }

    void whateverStandsInTheFilesPlace()
    {
        QFETCH(const QByteArray, script);
        QFETCH(const int, port);
        QFETCH(const bool, kept);
        const TestFolder folder;
        const QByteArray name = QFile::encodeName(folder.path());
        QCOMPARE(std::system(("cd '" + name + "' && " + script).constData()), 0);
        std::optional<Unprivileged> somebody;
        if (script.endsWith("chmod 0 settings.ini"))
            somebody.emplace();
        {
            UserDefaults defaults(folder.filePath(u"settings.ini"_s));
            QCOMPARE(defaults.integer(u"port"_s), port);
            QCOMPARE(defaults.isRead(), kept);
            defaults.set(u"port"_s, 4711);
            QCOMPARE(defaults.integer(u"port"_s), 4711);
            defaults.remove(u"port"_s);
            QCOMPARE(defaults.integer(u"port"_s), 0);
            // The pipe comes while the program runs.
            defaults.set(u"other"_s, 1);
            QCOMPARE(
                std::system(("cd '" + name + "' && rm -rf settings.ini && mkfifo settings.ini").constData()),
                0);
            defaults.set(u"other"_s, 2);
            QCOMPARE(defaults.integer(u"other"_s), 2);
        }
    }

#ifndef Q_OS_MACOS
    void followsTheConfigurationFolder()
    {
        const TestFolder folder;
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder.path()));
        UserDefaults defaults;
        defaults.set(u"guideDone"_s, true);
        const QFile::Permissions modes = QFile::permissions(folder.filePath(u"Tarnwick/Tarnwick.conf"_s));
        QCOMPARE(modes & ~(QFile::ReadUser | QFile::WriteUser), QFile::ReadOwner | QFile::WriteOwner);
    }
#endif
};

QTEST_GUILESS_MAIN(UserDefaultsTest)
#include "tst_userdefaults.moc"
