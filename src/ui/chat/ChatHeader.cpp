#include "ui/chat/ChatHeader.h"

#include "core/app/AppState.h"
#include "ui/chat/ModelPicker.h"
#include "ui/chat/ModelSettingsView.h"
#include "ui/widgets/BorderlessButton.h"
#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/Switch.h"
#include "ui/widgets/SymbolLabel.h"
#include "ui/widgets/TextLabel.h"

#include <QHBoxLayout>

using namespace Qt::StringLiterals;

namespace {

QWidget *makeInMemory()
{
    auto *part = new QWidget;
    auto *row = new QHBoxLayout(part);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(6);
    row->addWidget(new SymbolLabel(u"memorychip"_s, 16, Tint::green));
    row->addWidget(new TextLabel(ChatHeader::tr("In memory"), TextStyle::caption, Tint::green));
    return part;
}

} // namespace

ChatHeader::ChatHeader(AppState &state, const QUuid &id, QWidget *parent)
    : QWidget(parent),
      m_state(state),
      m_id(id),
      m_model(new ModelPicker),
      m_think(new Switch(tr("Think"))),
      m_inMemory(makeInMemory()),
      m_settings(new BorderlessButton(u"slider.horizontal.3"_s, tr("Settings for this model")))
{
    m_model->setAccessibleName(tr("Model"));
    m_think->setToolTip(tr("Let the model reason before it answers"));
    auto *exportButton = new BorderlessButton(u"square.and.arrow.up"_s, tr("Export as Markdown"));
    auto *deleteButton = new BorderlessButton(u"trash"_s, tr("Delete this chat"));

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(10, 10, 10, 10);
    row->setSpacing(8);
    auto *label = new TextLabel(tr("Model"));
    label->setBuddy(m_model); // by which screen readers on Linux know it
    row->addWidget(label);
    row->addWidget(m_model);
    row->addSpacing(8);
    row->addWidget(m_think);
    row->addSpacing(8);
    row->addWidget(m_inMemory);
    row->addStretch(1);
    row->addWidget(m_settings);
    row->addWidget(exportButton);
    row->addWidget(deleteButton);

    connect(m_model, &ModelPicker::chosen, this, &ChatHeader::chooseModel);
    connect(m_think, &Switch::clicked, this, [this](bool think) {
        m_state.chats().mutate(m_id, [think](Conversation &conversation) { conversation.think = think; });
        m_state.chats().commit(m_id);
    });
    connect(m_settings, &QToolButton::clicked, this, &ChatHeader::openSettings);
    connect(exportButton, &QToolButton::clicked, this, [this] { m_state.exportMarkdown(m_id); });
    connect(deleteButton, &QToolButton::clicked, this, [this] { m_state.chats().deleteConversation(m_id); });

    render();
    auto *scheduler = new RenderScheduler(this, [this] { render(); });
    scheduler->follow(&m_state, &AppState::installedChanged, &AppState::loadedChanged,
                      &AppState::capabilitiesChanged);
    scheduler->follow(&m_state.engine(), &EngineManager::stateChanged);
    connect(&m_state.chats(), &ChatStore::conversationChanged, scheduler,
            [this, scheduler](const QUuid &changed) {
                if (changed == m_id)
                    scheduler->schedule();
            });
}

void ChatHeader::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_askedModel.clear();
    render();
}

void ChatHeader::render()
{
    const Conversation *conversation = m_state.chats().find(m_id);
    if (!conversation)
        return;
    m_model->showModels(m_state.installedIndex(), conversation->model);
    m_think->setVisible(m_state.capabilities().value(conversation->model).contains("thinking"_L1));
    m_think->setChecked(conversation->think);
    m_inMemory->setVisible(m_state.isLoaded(conversation->model));
    m_settings->setDisabled(conversation->model.isEmpty());
    askForCapabilities(conversation->model);
}

// Once each time the pane is shown, the model changes or the engine comes up; a request that failed is not
// repeated for every chunk of a reply.
void ChatHeader::askForCapabilities(const QString &model)
{
    const bool running = m_state.engine().state().kind == EngineManager::State::running;
    if (!isVisible() || !running) {
        m_askedModel.clear();
        return;
    }
    if (m_askedModel == model)
        return;
    m_askedModel = model;
    m_state.loadCapabilities(model);
}

void ChatHeader::chooseModel(const QString &model)
{
    m_state.chats().mutate(m_id, [&model](Conversation &conversation) { conversation.model = model; });
    m_state.chats().commit(m_id);
}

void ChatHeader::openSettings()
{
    if (const Conversation *conversation = m_state.chats().find(m_id))
        (new ModelSettingsView(m_state, conversation->model, this))->open();
}
