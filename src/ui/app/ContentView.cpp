#include "ui/app/ContentView.h"

#include "core/app/Announcement.h"
#include "core/app/AppState.h"
#include "platform/defaults/UserDefaults.h"
#include "ui/app/BannerView.h"
#include "ui/app/GuideView.h"
#include "ui/app/SidebarView.h"
#include "ui/chat/ChatView.h"
#include "ui/engine/ServerView.h"
#include "ui/models/ModelsView.h"
#include "ui/widgets/Announcer.h"
#include "ui/widgets/Divider.h"
#include "ui/widgets/RenderScheduler.h"

#include <QHBoxLayout>
#include <QStackedWidget>

ContentView::ContentView(AppState &state, Desktop &desktop, UserDefaults &defaults, QWidget *parent)
    : QWidget(parent),
      m_state(state),
      m_defaults(defaults),
      m_chat(new ChatView(state, desktop, defaults)),
      m_screens(new QStackedWidget),
      m_tabs(new QWidget),
      m_guide(GuideView::isDone(defaults) ? nullptr : new GuideView(state, defaults))
{
    setMinimumSize(960, 620);
    // In the order of AppTab.
    m_screens->addWidget(new ModelsView(state));
    m_screens->addWidget(m_chat);
    m_screens->addWidget(new ServerView(state, desktop));
    m_screens->setBackgroundRole(QPalette::Base);
    m_screens->setAutoFillBackground(true);

    auto *row = new QHBoxLayout(m_tabs);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(new SidebarView(state));
    row->addWidget(new Divider(Qt::Vertical));
    row->addWidget(m_screens, 1);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(new BannerView(state));
    if (m_guide)
        column->addWidget(m_guide, 1);
    column->addWidget(m_tabs, 1);

    announcePulls();
    render();
    auto *scheduler = new RenderScheduler(this, [this] { render(); });
    scheduler->follow(&m_state, &AppState::tabChanged);
    scheduler->follow(&m_defaults, &UserDefaults::changed);
}

void ContentView::announcePulls()
{
    auto *announcer = new Announcer(this);
    const auto announce = [announcer](const DownloadItem &item) {
        const Notification end = Announcement::ofPull(item);
        announcer->announce(tr("%1. %2").arg(end.title, end.body));
    };
    connect(&m_state.queue(), &DownloadQueue::succeeded, announcer, announce);
    connect(&m_state.queue(), &DownloadQueue::failed, announcer, announce);
}

void ContentView::render()
{
    const bool guided = m_guide && !GuideView::isDone(m_defaults);
    if (m_guide)
        m_guide->setVisible(guided);
    m_tabs->setVisible(!guided);
    m_screens->setCurrentIndex(static_cast<int>(m_state.tab()));
}

void ContentView::searchChats()
{
    m_state.setTab(AppTab::chat);
    render();
    m_chat->startSearch();
}
