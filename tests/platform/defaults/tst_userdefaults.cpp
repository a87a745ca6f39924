#include "platform/defaults/UserDefaults.h"
#include "support/TestFolder.h"

#include <QSignalSpy>
#include <QTest>

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
