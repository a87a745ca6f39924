#include "core/engine/AppPaths.h"
#include "support/AppUnderTest.h"
#include "support/AppWithItsEngine.h"
#include "support/FragileFolder.h"
#include "support/InstallerUnderTest.h"
#include "support/Waiting.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;
using Kind = EngineManager::State::Kind;

namespace {

QString mountsRefused;

} // namespace

// The folders fail under a running program: it goes on, what it holds stays, and reaches the disk once they
// work again.
class FoldersFailTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!mountsRefused.isEmpty())
            QSKIP(qPrintable(mountsRefused));
    }

    void chats_data() { addFolderFaults(); }
    void chats()
    {
        QFETCH(const FragileFolder::Fault, fault);
        AppUnderTest app({{u"DEMO_ENGINE_INSTALLED"_s, u"phi3.5"_s}});
        const QString path = app.sandbox.path(u"chats"_s);
        FragileFolder folder(path, fault);
        app.launch();
        const QUuid old = app.newConversation();
        QVERIFY(app.isAnswered(u"echo before"_s, old));
        QVERIFY(app.saved(old));

        folder.breakDown();
        const QString during = u"during "_s.repeated(3000).trimmed();
        QVERIFY(app.isAnswered(u"echo "_s + during, old));
        const QUuid fresh = app.newConversation();
        QVERIFY(app.isAnswered(u"echo "_s + during, fresh));
        app->chats().rename(old, u"Renamed"_s);
        QVERIFY(::waitFor(app->chats().savesWritten(std::chrono::seconds(10))));
        QCOMPARE(app->banner(), std::nullopt);
        QCOMPARE(app.contents(old).size(), 4);
        QCOMPARE(app.contents(fresh), QStringList({u"echo "_s + during, during}));
        // What the next launch finds: nothing, a folder made anew, or the files as they were.
        const std::optional<Conversation> found = app.saved(old);
        QCOMPARE(found.has_value(), fault != FragileFolder::aFile);
        QVERIFY(!found || found->messages.size() == (fault == FragileFolder::removed ? 4 : 2));
        QCOMPARE(QDir(path).entryList({u"*tarnwick*"_s}, QDir::AllEntries | QDir::Hidden), QStringList());

        // Without another change, what failed is written by the end of the program.
        folder.mend();
        app.launch();
        QCOMPARE(app.contents(old).size(), 4);
        QCOMPARE(app.contents(fresh).size(), 2);
        QVERIFY(app.isAnswered(u"echo after"_s, old) && app.isAnswered(u"echo after"_s, fresh));
        QCOMPARE(app.saved(old)->messages.size(), 6);
        QCOMPARE(app.saved(old)->messages[3].content, during);
        QCOMPARE(app.saved(old)->title, u"Renamed"_s);
        QCOMPARE(app.saved(fresh)->messages.size(), 4);
        app.drop();
    }

    void models_data() { addFolderFaults(); }
    void models()
    {
        QFETCH(const FragileFolder::Fault, fault);
        AppWithItsEngine app;
        FragileFolder folder(AppPaths::modelsDir(), fault);
        app.dependencies.downloads.freeBytes = [](const QString &) { return std::nullopt; };
        app.launch();
        QVERIFY(app.starts() && app.pullEnds(u"first"_s));
        QTRY_VERIFY(app->isInstalled(u"first"_s));

        folder.breakDown();
        QVERIFY(app.pullEnds(u"second"_s));
        if (fault == FragileFolder::removed)
            QTRY_VERIFY(app->isInstalled(u"second"_s)); // in a folder made anew
        else
            QVERIFY(!app.pullFailure(u"second"_s).isEmpty());
        if (fault == FragileFolder::full)
            QCOMPARE(app.pullFailure(u"second"_s), u"Your disk is full. Free some space and try again."_s);

        app->setServer(false);
        app->setServer(true);
        const EngineManager &engine = app->engine();
        QTRY_VERIFY(engine.state().kind != Kind::starting);
        QVERIFY(app.runs() || !engine.state().message.isEmpty());

        folder.mend();
        app->setServer(false);
        QVERIFY(app.starts());
        QVERIFY(app.pullEnds(u"second"_s) && app.pullEnds(u"first"_s));
        QTRY_VERIFY(app->queue().items().isEmpty());
        QTRY_COMPARE(app->installed().size(), 2);
        app->setServer(false);
    }

    void installation()
    {
        InstallerUnderTest installer;
        const QString temporary = AppPaths::tempDir();
        AppPaths::ensure(temporary);
        for (const QString &path : {AppPaths::applicationDir(), temporary}) {
            const ReadOnlyFolder folder(path);
            QCOMPARE(installer.installFrom(installer.release()),
                     u"Ollama cannot be installed, since the folder %1 is read-only."_s.arg(path));
            QVERIFY(installer.isUntouched() && installer.server.requests().isEmpty());
        }
    }
};

int main(int argc, char **argv)
{
    mountsRefused = PrivateMounts::enter();
    const QCoreApplication application(argc, argv);
    FoldersFailTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_foldersfail.moc"
