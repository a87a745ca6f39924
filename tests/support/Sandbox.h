// The application folder and the settings of one test, which vanish with it.
#pragma once

#include "platform/defaults/UserDefaults.h"

#include <QString>
#include <QTemporaryDir>

class DemoEngine;
struct EngineOptions;

class Sandbox
{
public:
    // The program's folders are below this one from now on. The first-run guide counts as done.
    Sandbox();
    // Ends an engine that was launched, and waits for the tasks that still run; one that does not end ends
    // the test program.
    ~Sandbox();
    Sandbox(const Sandbox &) = delete;
    Sandbox &operator=(const Sandbox &) = delete;

    UserDefaults &defaults() { return m_defaults; }
    QString path(const QString &name) const { return m_folder.filePath(name); }

    // The stand-in engine's program counts as chosen by the user. An engine manager made afterwards launches
    // it on a free port, or finds `engine` answering already.
    void chooseEngine();
    void chooseEngine(const DemoEngine &engine);
    // The same for a shell script, in which "demo" stands for the stand-in engine's program. Returns its
    // path.
    QString chooseScript(QString script);

    // No engine but the chosen one is looked for, and no pause is long.
    static EngineOptions engineOptions();

private:
    QTemporaryDir m_folder;
    UserDefaults m_defaults;
};
