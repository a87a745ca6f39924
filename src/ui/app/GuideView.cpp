#include "ui/app/GuideView.h"

#include "core/app/AppState.h"
#include "platform/defaults/UserDefaults.h"
#include "platform/text/ByteCount.h"
#include "ui/app/GuideStep.h"
#include "ui/engine/EngineInstallView.h"
#include "ui/models/DownloadProgressView.h"
#include "ui/widgets/FocusKeeper.h"
#include "ui/widgets/ProminentButton.h"
#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/SymbolLabel.h"
#include "ui/widgets/TextLabel.h"

using namespace Qt::StringLiterals;

namespace {

const QString doneKey = u"guideDone"_s;

} // namespace

GuideView::GuideView(AppState &state, UserDefaults &defaults, QWidget *parent)
    : ScrollPage(parent),
      m_state(state),
      m_defaults(defaults),
      m_best(ModelCatalog::bestPick(state.memory())),
      m_engineStep(new GuideStep(1, tr("Get the engine"))),
      m_engineReady(new TextLabel(tr("Ollama is ready on this Mac."))),
      m_engineMissing(new TextLabel(tr("Ollama is the program that runs the models."))),
      m_install(new EngineInstallView(state.engine())),
      m_modelStep(new GuideStep(2, tr("Pick a model"))),
      m_modelInstalled(new TextLabel(tr("A model is installed."))),
      m_download(new ProminentButton(tr("Download %1").arg(m_best.name))),
      m_progress(new DownloadProgressView(state.queue(), Qt::AlignLeading)),
      m_chatStep(new GuideStep(3, tr("Chat"))),
      m_chat(new ProminentButton(tr("Open a chat")))
{
    fillEngineStep();
    fillModelStep();
    fillChatStep();
    addPage();

    render();
    auto *scheduler = new RenderScheduler(this, [this] { render(); });
    scheduler->follow(&m_state.engine(), &EngineManager::enginePathChanged);
    scheduler->follow(&m_state.queue(), &DownloadQueue::itemsChanged);
    scheduler->follow(&m_state, &AppState::installedChanged);
}

bool GuideView::isDone(const UserDefaults &defaults)
{
    return defaults.boolean(doneKey);
}

// The keyboard begins at what is to be done next rather than in the toolbar.
void GuideView::showEvent(QShowEvent *event)
{
    ScrollPage::showEvent(event);
    for (QWidget *next = nextInFocusChain(); next != this; next = next->nextInFocusChain()) {
        if (isAncestorOf(next) && next->isVisibleTo(this) && next->isEnabled() &&
            (next->focusPolicy() & Qt::TabFocus))
            return next->setFocus();
    }
}

void GuideView::fillEngineStep()
{
    m_engineReady->setWrapping();
    m_engineMissing->setWrapping();
    m_engineStep->content()->addWidget(m_engineReady);
    m_engineStep->content()->addWidget(m_engineMissing);
    m_engineStep->content()->addWidget(m_install);
}

void GuideView::fillModelStep()
{
    auto *name = new TextLabel(u"%1 (%2)"_s.arg(m_best.name, m_best.sizeLabel), TextStyle::headline);
    auto *first = new QHBoxLayout;
    first->setSpacing(8);
    first->addWidget(new SymbolLabel(u"star.fill"_s, TextStyle::headline, Tint::yellow));
    first->addWidget(name, 1);
    auto *why = new TextLabel(tr("%1. Best pick for %2 of memory.")
                                  .arg(m_best.bestFor, byteCountText(static_cast<qint64>(m_state.memory()))),
                              TextStyle::callout, Tint::secondary);
    why->setWrapping();
    m_progress->setMaximumWidth(320);
    auto *progress = new QHBoxLayout; // which asks for the height at that width
    progress->addWidget(m_progress, 1000);
    progress->addStretch(1);
    connect(m_download, &QPushButton::clicked, this,
            [this] { m_state.queue().enqueue(m_best.name, m_best.sizeBytes); });
    QVBoxLayout *const content = m_modelStep->content();
    content->addLayout(first);
    content->addWidget(why);
    content->addWidget(m_modelInstalled);
    content->addLayout(progress);
    content->addWidget(m_download, 0, Qt::AlignLeading);
}

void GuideView::fillChatStep()
{
    connect(m_chat, &QPushButton::clicked, this, &GuideView::openChat);
    m_chatStep->content()->addWidget(m_chat, 0, Qt::AlignLeading);
}

void GuideView::addPage()
{
    auto *heading = new TextLabel(tr("Welcome to Tarnwick"), TextStyle::largeTitle);
    heading->setBold();
    heading->setWrapping();
    auto *intro = new TextLabel(tr("Three steps and you are chatting with an AI that runs only on this Mac."),
                                TextStyle::body, Tint::secondary);
    intro->setWrapping();
    auto *skip = new Button(tr("Skip the guide"));
    connect(skip, &QPushButton::clicked, this, &GuideView::finish);

    auto *page = new QWidget;
    page->setMaximumWidth(640);
    auto *parts = new QVBoxLayout(page);
    parts->setContentsMargins(0, 0, 0, 0);
    parts->setSpacing(16);
    for (QWidget *part : {static_cast<QWidget *>(heading), static_cast<QWidget *>(intro),
                          static_cast<QWidget *>(m_engineStep), static_cast<QWidget *>(m_modelStep),
                          static_cast<QWidget *>(m_chatStep)})
        parts->addWidget(part);
    parts->addWidget(skip, 0, Qt::AlignTrailing);
    auto *row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(page, 1000);
    row->addStretch(1);
    column()->setContentsMargins(30, 30, 30, 30);
    column()->addLayout(row);
    column()->addStretch(1);
}

void GuideView::render()
{
    const bool hasEngine = !m_state.engine().enginePath().isEmpty();
    const bool hasModel = !m_state.installed().isEmpty();
    m_chat->setEnabled(hasModel); // first: the focus of what goes below moves on to it
    const FocusKeeper engineKeeper(m_engineStep);
    const FocusKeeper modelKeeper(m_modelStep);
    m_engineStep->setDone(hasEngine);
    m_engineReady->setVisible(hasEngine);
    m_engineMissing->setVisible(!hasEngine);
    m_install->setVisible(!hasEngine);

    const DownloadItem *const item = hasModel ? nullptr : m_state.queue().item(m_best.name);
    if (item)
        m_progress->showItem(*item);
    m_modelStep->setDone(hasModel);
    m_modelInstalled->setVisible(hasModel);
    m_progress->setVisible(item != nullptr);
    m_download->setVisible(!hasModel && !item);
    m_download->setEnabled(hasEngine);
}

void GuideView::openChat()
{
    finish();
    if (m_state.installed().isEmpty())
        m_state.setTab(AppTab::models);
    else
        m_state.openChat(m_state.installed().constFirst().name);
}

void GuideView::finish()
{
    m_defaults.set(doneKey, true);
}
