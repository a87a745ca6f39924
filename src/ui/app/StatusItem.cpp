#include "ui/app/StatusItem.h"

#include "core/app/AppState.h"
#include "platform/defaults/UserDefaults.h"
#include "platform/desktop/Desktop.h"
#include "platform/tray/TrayHost.h"
#include "ui/engine/ServerStatus.h"
#include "ui/widgets/SymbolIcon.h"

using namespace Qt::StringLiterals;

StatusItem::StatusItem(AppState &state, Desktop &desktop, UserDefaults &defaults, TrayHost &host)
    : m_state(state),
      m_desktop(desktop),
      m_defaults(defaults),
      m_host(host),
      m_status(m_menu.addAction(QString())),
      m_switch(m_menu.addAction(QString()))
{
    m_status->setEnabled(false);
    m_menu.addSeparator();
    QAction *open = m_menu.addAction(tr("Open Window"));
    QAction *quit = m_menu.addAction(tr("Quit"));
    connect(m_switch, &QAction::triggered, this, [this] { m_state.setServer(!m_state.engine().isOn()); });
    connect(open, &QAction::triggered, this, [this] { m_desktop.bringToFront(); });
    connect(quit, &QAction::triggered, this, &StatusItem::quitRequested);

    render();
    connect(&m_state.engine(), &EngineManager::stateChanged, this, &StatusItem::render);
    connect(&m_state.engine(), &EngineManager::enginePathChanged, this, &StatusItem::render);
    place();
    connect(&m_host, &TrayHost::presentChanged, this, &StatusItem::place);
    connect(&m_defaults, &UserDefaults::changed, this, &StatusItem::place);
}

void StatusItem::render()
{
    const EngineManager &engine = m_state.engine();
    m_status->setText(tr("Server: %1").arg(serverStatus(engine.state().kind).text));
    m_switch->setText(engine.isOn() ? tr("Stop") : tr("Start"));
    m_switch->setEnabled(engine.isOn() || !engine.enginePath().isEmpty());
}

// Qt's tray must not be asked before the desktop has one: it remembers its first answer for good.
void StatusItem::place()
{
    const bool wanted = m_host.isPresent() && m_defaults.boolean(u"showMenuBar"_s);
    if (wanted == (m_icon != nullptr))
        return;
    if (wanted) {
        m_host.settle();
        QIcon icon = SymbolIcon::icon(u"cpu"_s);
        icon.setIsMask(true); // in the menu bar's colour, on macOS
        m_icon = std::make_unique<QSystemTrayIcon>(icon);
        m_icon->setToolTip(u"Tarnwick"_s);
        m_icon->setContextMenu(&m_menu);
#ifndef Q_OS_MACOS // where any click opens the menu
        connect(m_icon.get(), &QSystemTrayIcon::activated, this,
                [this](QSystemTrayIcon::ActivationReason reason) {
                    if (reason == QSystemTrayIcon::Trigger)
                        m_desktop.bringToFront();
                });
#endif
        m_icon->show();
    } else {
        m_icon.reset();
    }
    const bool shown = m_icon && QSystemTrayIcon::isSystemTrayAvailable();
    if (std::exchange(m_shown, shown) != shown)
        Q_EMIT shownChanged();
}
