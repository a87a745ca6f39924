// The program on a stand-in engine that runs, with its settings window on the screen.
#pragma once

#include "support/AppUnderTest.h"
#include "support/OnScreen.h"
#include "ui/app/SettingsView.h"

#include <QPointer>

#include <memory>

struct SettingsOnScreen : AppUnderTest
{
    explicit SettingsOnScreen(LoginItem &login) : loginItem(login) { reopen(); }

    // Makes the window anew, as each opening does.
    void reopen()
    {
        m_view = std::make_unique<SettingsView>(**this, desktop, sandbox.defaults(), loginItem);
        m_view->show();
        if (!QTest::qWaitForWindowActive(m_view.get()))
            qFatal("The window does not become active");
    }
    void drop() { m_view.reset(); }

    SettingsView *view() { return m_view.get(); }
    bool shows(const QString &words) { return onscreen::shows(view(), words); }
    QAbstractButton *button(const QString &words) { return onscreen::find<QAbstractButton>(view(), words); }
    void click(const QString &words) { onscreen::click(view(), words); }

    LoginItem &loginItem;

private:
    std::unique_ptr<SettingsView> m_view;
};
