// All that shows the engine's state and changes it, on the screen side by side.
#pragma once

#include "platform/tray/TrayHost.h"
#include "support/AppWithItsEngine.h"
#include "support/NoLoginItem.h"
#include "support/OnScreen.h"
#include "ui/app/SettingsView.h"
#include "ui/app/StatusItem.h"
#include "ui/engine/EngineBanner.h"
#include "ui/engine/ServerToolbar.h"
#include "ui/engine/ServerView.h"

struct EngineSurfaces
{
    explicit EngineSurfaces(AppWithItsEngine &app)
        : toolbar(*app, app.desktop),
          view(*app, app.desktop),
          banner(*app),
          settings(*app, app.desktop, app.sandbox.defaults(), loginItem),
          item(*app, app.desktop, app.sandbox.defaults(), host)
    {
        for (QWidget *widget : std::initializer_list<QWidget *>{&toolbar, &view, &banner, &settings})
            widget->show();
    }

    QAbstractButton *onOff() const
    {
        return onscreen::find<QAbstractButton>(&toolbar, QStringLiteral("Local server"));
    }
    QList<QAction *> menu() { return item.menu().actions(); }
    // Stops or starts by the status item's menu.
    void chooseInMenu()
    {
        item.menu().popup({});
        // A click counts only where the mouse has moved since the menu came.
        item.menu().setActiveAction(menu().at(1));
        QTest::keyClick(&item.menu(), Qt::Key_Return);
    }

    NoLoginItem loginItem;
    TrayHost host;
    ServerToolbar toolbar;
    ServerView view;
    EngineBanner banner;
    SettingsView settings;
    StatusItem item;
};
