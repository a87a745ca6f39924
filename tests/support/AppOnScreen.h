// The program on a stand-in engine that runs, with its main window on the screen.
#pragma once

#include "support/AppUnderTest.h"
#include "support/OnScreen.h"
#include "ui/app/MainWindow.h"

#include <optional>

struct AppOnScreen : AppUnderTest
{
    enum Launch
    {
        first, // which the guide welcomes
        later
    };

    explicit AppOnScreen(const QMap<QString, QString> &variables = {}, Launch launch = later)
        : AppUnderTest(variables)
    {
        sandbox.defaults().set(QStringLiteral("guideDone"), launch == later);
        reopen();
    }

    // Closes the window and makes a new one.
    void reopen()
    {
        m_window.emplace(**this, desktop, sandbox.defaults());
        m_window->show();
        if (!QTest::qWaitForWindowActive(&*m_window))
            qFatal("The window does not become active");
    }

    // The window, or that part of it.
    MainWindow *window() { return &*m_window; }
    template <class Part>
    Part *find()
    {
        return m_window->findChild<Part *>();
    }

    bool shows(const QString &words) { return onscreen::shows(&*m_window, words); }
    void click(const QString &button) { onscreen::click(&*m_window, button); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier)
    {
        QTest::keyClick(&*m_window, key, modifiers);
    }

private:
    std::optional<MainWindow> m_window;
};
