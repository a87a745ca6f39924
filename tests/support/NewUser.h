// The program as it is launched for the first time, on a machine without an engine, with its main window on
// the screen. A release of the engine is to be had once the test publishes one.
#pragma once

#include "core/models/ModelCatalog.h"
#include "support/AppWithItsEngine.h"
#include "support/OnScreen.h"
#include "support/ReleaseServer.h"
#include "ui/app/MainWindow.h"

#include <optional>

struct NewUser : AppWithItsEngine
{
    NewUser()
    {
        sandbox.defaults().remove(QStringLiteral("manualEnginePath"));
        sandbox.defaults().remove(QStringLiteral("guideDone"));
        dependencies.downloads.freeBytes = [](const QString &) { return std::optional<qint64>(); };
        dependencies.memory = 17'179'869'184;
        dependencies.engine.installer = server.options();
        open();
    }

    // A launch, the first or a later one, and the end of it.
    void open()
    {
        launch();
        m_window.emplace(**this, desktop, sandbox.defaults());
        m_window->show();
        if (!QTest::qWaitForWindowActive(&*m_window))
            qFatal("The window does not become active");
    }
    void close()
    {
        m_window.reset();
        drop();
    }

    MainWindow *window() { return &*m_window; }
    bool shows(const QString &words) { return onscreen::shows(&*m_window, words); }
    bool canClick(const QString &button) { return onscreen::canClick(&*m_window, button); }
    // Waits until it can be clicked; ends the test when that does not come.
    void click(const QString &button)
    {
        if (!QTest::qWaitFor([&] { return canClick(button); }, 120'000))
            qFatal("There is no button \"%s\" to click", qUtf8Printable(button));
        onscreen::click(&*m_window, button);
    }

    // The model that suits this machine best.
    CatalogModel best() { return ModelCatalog::bestPick((*this)->memory()); }

    ReleaseServer server;

private:
    std::optional<MainWindow> m_window;
};
