#include "support/Sandbox.h"

#include "core/engine/AppPaths.h"
#include "core/engine/ChildProcessHolder.h"
#include "core/engine/EngineManager.h"
#include "platform/async/Launch.h"
#include "support/DemoEngine.h"

#include <QTcpServer>
#include <QTest>

using namespace Qt::StringLiterals;

Sandbox::Sandbox() : m_defaults(m_folder.filePath(u"defaults.ini"_s))
{
    AppPaths::setApplicationDir(m_folder.filePath(u"Tarnwick"_s));
    m_defaults.set(u"guideDone"_s, true);
}

Sandbox::~Sandbox()
{
    ChildProcessHolder::shared().terminate();
    if (!QTest::qWaitFor([] { return runningTasks() == 0; }, 30'000))
        qFatal("%d tasks did not end", runningTasks());
    AppPaths::setApplicationDir({});
}

void Sandbox::chooseEngine()
{
    QTcpServer free;
    free.listen(QHostAddress::LocalHost);
    m_defaults.set(u"port"_s, static_cast<int>(free.serverPort()));
    m_defaults.set(u"manualEnginePath"_s, QString::fromUtf8(TARNWICK_DEMO_ENGINE));
}

void Sandbox::chooseEngine(const DemoEngine &engine)
{
    m_defaults.set(u"port"_s, engine.port());
    m_defaults.set(u"manualEnginePath"_s, QString::fromUtf8(TARNWICK_DEMO_ENGINE));
}

QString Sandbox::chooseScript(QString script)
{
    QFile file(path(u"engine program"_s));
    script.replace("demo"_L1, QString::fromUtf8(TARNWICK_DEMO_ENGINE));
    if (!file.open(QIODevice::WriteOnly) || file.write("#!/bin/sh\n" + script.toUtf8()) < 0 ||
        !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
        qFatal("The engine program cannot be written");
    m_defaults.set(u"manualEnginePath"_s, file.fileName());
    return file.fileName();
}

EngineOptions Sandbox::engineOptions()
{
    EngineOptions options;
    options.installPlaces.clear();
    options.pause = std::chrono::milliseconds(20);
    return options;
}
