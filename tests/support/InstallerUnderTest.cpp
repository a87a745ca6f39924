#include "support/InstallerUnderTest.h"

#include "core/engine/AppPaths.h"
#include "platform/files/RemoveTree.h"

#include <QDir>
#include <QFile>
#include <QTest>
#include <QTestEventLoop>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 60'000; // ms

QString oldEngine()
{
    return AppPaths::engineDir() + "/ollama"_L1;
}

} // namespace

InstallerUnderTest::InstallerUnderTest()
{
    putAt(oldEngine(), "old");
    remake();
}

InstallerUnderTest::~InstallerUnderTest()
{
    m_installer.reset();
    if (!QTest::qWaitFor([] { return runningTasks() == 0; }, patience))
        qFatal("The installer did not end");
    removeTree(AppPaths::applicationDir()); // with folders that Qt's own would not remove
}

void InstallerUnderTest::remake(const InstallerOptions &options)
{
    m_installer = std::make_unique<EngineInstaller>(options, &desktop);
    lines.clear();
    QObject::connect(m_installer.get(), &EngineInstaller::installChanged, m_installer.get(), [this] {
        if (m_installer->install())
            lines << m_installer->install()->text;
    });
}

TarArchive InstallerUnderTest::release(const QByteArray &script)
{
    TarArchive archive;
    archive.addFile("bin/ollama", "#!/bin/sh\n" + script, 0644);
    return archive;
}

TarArchive InstallerUnderTest::demoRelease()
{
    TarArchive archive;
    archive.add("bin", TarArchive::folder)
        .addFile("bin/ollama", contentOf(QStringLiteral(TARNWICK_DEMO_ENGINE)), 0644)
        .addFile("lib/ollama/libengine.so.1", "a library")
        .add("lib/ollama/cuda/libengine.so", TarArchive::symbolicLink, "../libengine.so.1");
    return archive;
}

void InstallerUnderTest::hold(const QString &path)
{
    server.publish(release().compressed());
    if (!path.isEmpty())
        server.answer(path).heldAfter = 100;
}

QString InstallerUnderTest::install()
{
    m_installer->startInstall();
    m_installer->startInstall();
    if (!QTest::qWaitFor([this] { return !m_installer->install(); }, patience))
        qFatal("The installation did not end");
    return sentence();
}

QString InstallerUnderTest::installFrom(const TarArchive &archive)
{
    server.publish(archive.compressed());
    return install();
}

QString InstallerUnderTest::installFrom(ReleaseServer::Answer record, const ReleaseServer::Answer &archive)
{
    record.body.replace("SERVER", server.url().toEncoded());
    server.setAnswer(ReleaseServer::recordPath, record);
    server.setAnswer(u"/archive"_s, archive);
    return install();
}

void InstallerUnderTest::choose(const QString &name)
{
    desktop.answer = sandbox.path(name);
    // A loop that never sleeps, unlike qWaitFor(): the programs may print a lot.
    QTestEventLoop loop;
    bool told = false;
    const auto end = [&loop, &told] {
        told = true;
        loop.exitLoop();
    };
    QObject::connect(m_installer.get(), &EngineInstaller::chosen, &loop, end);
    QObject::connect(m_installer.get(), &EngineInstaller::installErrorChanged, &loop, end);
    m_installer->chooseManually();
    if (!told)
        loop.enterLoopMSecs(patience);
    if (!told)
        qFatal("The check of the chosen program did not end");
}

void InstallerUnderTest::putAt(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s cannot be written", qUtf8Printable(path));
    if (!content.isEmpty())
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QByteArray InstallerUnderTest::contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

mode_t InstallerUnderTest::modeOf(const QString &path)
{
    struct stat facts = {};
    ::lstat(QFile::encodeName(path).constData(), &facts);
    return facts.st_mode & 07777;
}

QString InstallerUnderTest::installedProgram()
{
    return AppPaths::engineDir() + "/bin/ollama"_L1;
}

bool InstallerUnderTest::hasOldEngine()
{
    return contentOf(oldEngine()) == "old";
}

bool InstallerUnderTest::isTidy()
{
    return QDir(AppPaths::tempDir())
        .isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}
