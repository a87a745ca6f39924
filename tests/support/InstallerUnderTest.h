// An installer in a sandbox with an engine to replace, its release server and its desktop, and what a test of
// it asks again and again.
#pragma once

#include "core/engine/EngineInstaller.h"
#include "support/FakeDesktop.h"
#include "support/ReleaseServer.h"
#include "support/Sandbox.h"
#include "support/TarArchive.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>

#include <sys/types.h>

class InstallerUnderTest
{
public:
    InstallerUnderTest();
    // Also waits for what the installer began.
    ~InstallerUnderTest();

    EngineInstaller *operator->() { return m_installer.get(); }
    EngineInstaller *get() { return m_installer.get(); }
    // Makes the installer anew, with the server's options or others.
    void remake() { remake(server.options()); }
    void remake(const InstallerOptions &options);
    void drop() { m_installer.reset(); }

    // A release with a script as its engine.
    static TarArchive release(const QByteArray &script = "echo version $1");
    // The stand-in engine in the layout of a real release.
    static TarArchive demoRelease();
    // Publishes a good release; what is asked for at `path` breaks off and waits, unless it is empty.
    void hold(const QString &path);
    // What the installer says went wrong; empty when there is nothing.
    QString sentence() const { return m_installer->installError().value_or(QString()); }
    // Runs an installation to its end and returns its sentence.
    QString install();
    QString installFrom(const TarArchive &archive);
    // The same with these answers of the release service and of the address in its record, where "SERVER"
    // stands for this server's own.
    QString installFrom(ReleaseServer::Answer record, const ReleaseServer::Answer &archive);
    // Lets the user choose the file called `name`, and waits for what comes of it.
    void choose(const QString &name);

    // Below the sandbox's folder; an executable file, unless it is empty.
    void put(const QString &name, const QByteArray &content) { putAt(sandbox.path(name), content); }
    static void putAt(const QString &path, const QByteArray &content);
    static QByteArray contentOf(const QString &path);
    // The permissions of the file itself, the special ones included.
    static mode_t modeOf(const QString &path);

    static QString installedProgram();
    static bool hasOldEngine();
    // No installation has left anything in the temporary folder.
    static bool isTidy();
    // The same, and the engine that was there still is.
    static bool isUntouched() { return hasOldEngine() && isTidy(); }

    Sandbox sandbox;
    ReleaseServer server;
    FakeDesktop desktop;
    QStringList lines; // that the installer has shown

private:
    std::unique_ptr<EngineInstaller> m_installer;
};
