#include "ui/app/MainWindow.h"

#include "core/app/AppState.h"
#include "platform/defaults/UserDefaults.h"
#include "ui/app/ContentView.h"
#include "ui/app/EditMenu.h"
#include "ui/app/GuideView.h"
#include "ui/app/WindowMenu.h"
#include "ui/engine/ServerToolbar.h"

#include <QActionGroup>
#include <QCloseEvent>
#include <QMenuBar>
#include <QToolBar>

using namespace Qt::StringLiterals;

namespace {

const QString placeKey = u"windowGeometry"_s;

// Not every desktop has keys of its own for everything.
QKeySequence usualKeys(QKeySequence::StandardKey key, QKeyCombination otherwise)
{
    const QKeySequence usual(key);
    return usual.isEmpty() ? QKeySequence(otherwise) : usual;
}

} // namespace

MainWindow::MainWindow(AppState &state, Desktop &desktop, UserDefaults &defaults)
    : m_state(state), m_defaults(defaults), m_content(new ContentView(state, desktop, defaults))
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
    enableTabActions();
    connect(&m_defaults, &UserDefaults::changed, this, &MainWindow::enableTabActions);
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
    settings->setShortcut(usualKeys(QKeySequence::Preferences, Qt::CTRL | Qt::Key_Comma));
    settings->setMenuRole(QAction::PreferencesRole);
    connect(settings, &QAction::triggered, this, &MainWindow::settingsRequested);
    file->addSeparator();
    QAction *quit = file->addAction(tr("&Quit"));
    quit->setShortcut(usualKeys(QKeySequence::Quit, Qt::CTRL | Qt::Key_Q));
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
    makeTabMenu();
    menuBar()->addMenu(new WindowMenu(this));
}

void MainWindow::makeTabMenu()
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
}

void MainWindow::enableTabActions()
{
    for (QAction *action : std::as_const(m_tabActions))
        action->setEnabled(GuideView::isDone(m_defaults));
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
