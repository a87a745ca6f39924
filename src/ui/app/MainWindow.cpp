#include "ui/app/MainWindow.h"

#include "core/app/AppState.h"
#include "platform/defaults/UserDefaults.h"
#include "ui/app/ContentView.h"
#include "ui/app/EditMenu.h"
#include "ui/app/GuideView.h"
#include "ui/app/WindowMenu.h"
#include "ui/chat/TextZoom.h"
#include "ui/engine/ServerToolbar.h"

#include <QActionGroup>
#include <QCloseEvent>
#include <QMenuBar>
#include <QToolBar>

using namespace Qt::StringLiterals;

namespace {

const QString placeKey = u"windowGeometry"_s;

// The desktop's own keys, where it has any, and those that are the same on all of them.
QList<QKeySequence> keysFor(QKeySequence::StandardKey key, QKeyCombination everywhere)
{
    QList<QKeySequence> keys = QKeySequence::keyBindings(key);
    if (!keys.contains(everywhere))
        keys.append(everywhere);
    return keys;
}

} // namespace

MainWindow::MainWindow(AppState &state, Desktop &desktop, UserDefaults &defaults)
    : m_state(state),
      m_defaults(defaults),
      m_content(new ContentView(state, desktop, defaults)),
      m_zoom(new TextZoom(defaults, this))
{
    setWindowTitle(u"Tarnwick"_s);
    setObjectName("main"_L1);
    setUnifiedTitleAndToolBarOnMac(true);
    setContextMenuPolicy(Qt::NoContextMenu); // it would offer to hide the toolbar
    auto *toolbar = new QToolBar(tr("Server"));
    toolbar->setMovable(false);
    toolbar->addWidget(new ServerToolbar(state, desktop));
    addToolBar(toolbar);
    setCentralWidget(m_content);
    makeMenus();
    enableActions();
    connect(&m_defaults, &UserDefaults::changed, this, &MainWindow::enableActions);
    connect(&m_state, &AppState::tabChanged, this, &MainWindow::enableActions);
    restorePlace();
}

void MainWindow::makeMenus()
{
    QMenu *file = menuBar()->addMenu(tr("&File"));
    QAction *newChat = file->addAction(tr("&New Chat"));
    newChat->setShortcut(QKeySequence::New);
    connect(newChat, &QAction::triggered, &m_state, &AppState::newChat);
    m_tabActions.append(newChat);
    QAction *close = file->addAction(tr("&Close Window"));
    close->setShortcuts(QKeySequence::Close);
    connect(close, &QAction::triggered, this, &QWidget::close);
    file->addSeparator();
    QAction *settings = file->addAction(tr("&Settings…"));
    settings->setShortcuts(keysFor(QKeySequence::Preferences, Qt::CTRL | Qt::Key_Comma));
    settings->setMenuRole(QAction::PreferencesRole);
    connect(settings, &QAction::triggered, this, &MainWindow::settingsRequested);
    file->addSeparator();
    QAction *quit = file->addAction(tr("&Quit"));
    quit->setShortcuts(keysFor(QKeySequence::Quit, Qt::CTRL | Qt::Key_Q));
    quit->setShortcutContext(Qt::ApplicationShortcut);
    quit->setMenuRole(QAction::QuitRole);
    connect(quit, &QAction::triggered, this, &MainWindow::quitRequested);

    auto *edit = new EditMenu(this);
    edit->addSeparator();
    QAction *search = edit->addAction(tr("&Find in Chats"));
    search->setShortcut(QKeySequence::Find);
    connect(search, &QAction::triggered, m_content, &ContentView::searchChats);
    m_tabActions.append(search);
    menuBar()->addMenu(edit);
    makeViewMenu();
    menuBar()->addMenu(new WindowMenu(this));
}

void MainWindow::makeViewMenu()
{
    QMenu *view = menuBar()->addMenu(tr("&View"));
    auto *group = new QActionGroup(this);
    const auto add = [&](const QString &text, Qt::Key key, AppTab tab) {
        QAction *action = view->addAction(text);
        action->setShortcut(QKeySequence(Qt::CTRL | key));
        action->setCheckable(true);
        group->addAction(action);
        m_tabActions.append(action);
        connect(action, &QAction::triggered, this, [this, tab] { m_state.setTab(tab); });
        const auto check = [this, action, tab] { action->setChecked(m_state.tab() == tab); };
        connect(view, &QMenu::aboutToShow, this, check);
    };
    add(tr("&Models"), Qt::Key_1, AppTab::models);
    add(tr("&Chat"), Qt::Key_2, AppTab::chat);
    add(tr("&Server"), Qt::Key_3, AppTab::server);
    view->addSeparator();
    addZoom(view);
}

void MainWindow::addZoom(QMenu *view)
{
    m_grow = view->addAction(tr("&Larger Text"), m_zoom, &TextZoom::grow);
    // Also without the shift key that the plus takes on many keyboards.
    m_grow->setShortcuts(keysFor(QKeySequence::ZoomIn, Qt::CTRL | Qt::Key_Plus)
                         << QKeySequence(Qt::CTRL | Qt::Key_Equal));
    m_shrink = view->addAction(tr("S&maller Text"), m_zoom, &TextZoom::shrink);
    m_shrink->setShortcuts(keysFor(QKeySequence::ZoomOut, Qt::CTRL | Qt::Key_Minus));
    m_usualSize = view->addAction(tr("&Usual Text Size"), m_zoom, &TextZoom::reset);
    m_usualSize->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_0));
}

void MainWindow::enableActions()
{
    const bool isGuided = !GuideView::isDone(m_defaults);
    for (QAction *action : std::as_const(m_tabActions))
        action->setEnabled(!isGuided);
    const bool isChat = !isGuided && m_state.tab() == AppTab::chat;
    m_grow->setEnabled(isChat && !m_zoom->isLargest());
    m_shrink->setEnabled(isChat && !m_zoom->isSmallest());
    m_usualSize->setEnabled(isChat);
}

void MainWindow::restorePlace()
{
    resize(1100, 720);
    if (const std::optional<QByteArray> place = m_defaults.data(placeKey))
        restoreGeometry(*place);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (isVisible())
        m_defaults.set(placeKey, saveGeometry());
    QMainWindow::closeEvent(event);
    if (!m_staysWhenClosed || !m_staysWhenClosed())
        Q_EMIT quitRequested();
}
