#include "ui/chat/ChatPane.h"

#include "core/app/AppState.h"
#include "ui/chat/ChatHeader.h"
#include "ui/chat/MessageInput.h"
#include "ui/chat/TextZoom.h"
#include "ui/chat/transcript/Transcript.h"
#include "ui/widgets/Announcer.h"
#include "ui/widgets/Divider.h"
#include "ui/widgets/ProminentButton.h"
#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/SymbolIcon.h"

#include <QHBoxLayout>
#include <QShortcut>

using namespace Qt::StringLiterals;

ChatPane::ChatPane(AppState &state, Desktop &desktop, TextZoom &zoom, const QUuid &id, QWidget *parent)
    : QWidget(parent),
      m_state(state),
      m_zoom(zoom),
      m_id(id),
      m_transcript(new Transcript(desktop)),
      m_input(new MessageInput),
      m_send(new ProminentButton(tr("Send"))),
      m_stop(new ProminentButton(tr("Stop"))),
      m_escape(new QShortcut(Qt::Key_Escape, this)),
      m_announcer(new Announcer(this))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(new ChatHeader(state, id));
    column->addWidget(new Divider(Qt::Horizontal));
    column->addWidget(m_transcript, 1);
    column->addWidget(new Divider(Qt::Horizontal));
    column->addWidget(makeInputRow());

    connect(m_transcript, &Transcript::regenerateRequested, this, [this] { m_state.regenerate(m_id); });
    connect(m_transcript, &Transcript::editRequested, this, &ChatPane::edit);
    connect(m_input, &MessageInput::submitted, this, &ChatPane::send);
    connect(m_input, &MessageInput::refused, this, [this] { refuse(tr("The pasted text is too long.")); });
    connect(m_input, &QPlainTextEdit::textChanged, this, &ChatPane::render);
    connect(m_send, &QPushButton::clicked, this, &ChatPane::send);
    connect(m_stop, &QPushButton::clicked, &m_state, &AppState::stopGenerating);
    connect(m_escape, &QShortcut::activated, &m_state, &AppState::stopGenerating);

    zoom.followWheel(m_transcript->viewport());
    zoom.followWheel(m_input->viewport());
    connect(&zoom, &TextZoom::changed, this, &ChatPane::scaleText);
    scaleText();

    render();
    auto *scheduler = new RenderScheduler(this, [this] { render(); });
    scheduler->follow(&m_state, &AppState::generatingIDChanged, &AppState::awaitedModelChanged,
                      &AppState::loadedChanged);
    connect(&m_state.chats(), &ChatStore::conversationChanged, scheduler,
            [this, scheduler](const QUuid &changed) {
                if (changed == m_id)
                    scheduler->schedule();
            });
}

QWidget *ChatPane::makeInputRow()
{
    m_send->setIcon(SymbolIcon::icon(u"paperplane.fill"_s, Tint::onAccent));
    m_stop->setIcon(SymbolIcon::icon(u"stop.circle.fill"_s, Tint::onAccent));
    auto *part = new QWidget;
    part->setBackgroundRole(QPalette::Window);
    part->setAutoFillBackground(true);
    auto *row = new QHBoxLayout(part);
    m_send->setMinimumHeight(m_input->sizeHint().height());
    m_stop->setMinimumHeight(m_input->sizeHint().height());
    row->setContentsMargins(10, 10, 10, 10);
    row->setSpacing(8);
    row->addWidget(m_input, 1, Qt::AlignBottom);
    row->addWidget(m_send, 0, Qt::AlignBottom);
    row->addWidget(m_stop, 0, Qt::AlignBottom);
    return part;
}

void ChatPane::scaleText()
{
    m_transcript->setTextScale(m_zoom.factor());
    m_input->setTextScale(m_zoom.factor());
}

void ChatPane::focusInput()
{
    m_input->setFocus();
}

QString ChatPane::draft() const
{
    return m_input->draft();
}

void ChatPane::setDraft(const QString &draft)
{
    m_input->setDraft(draft);
}

bool ChatPane::isGenerating() const
{
    return m_state.generatingID() == m_id;
}

void ChatPane::render()
{
    const Conversation *conversation = m_state.chats().find(m_id);
    if (!conversation)
        return;
    const bool generating = isGenerating();
    m_transcript->showConversation(*conversation, generating);
    m_transcript->setLoadsModel(generating && m_state.isLoadingModel());
    const bool buttonFocused = m_send->hasFocus() || m_stop->hasFocus();
    m_send->setVisible(!generating);
    m_stop->setVisible(generating);
    m_send->setEnabled(!m_input->draft().trimmed().isEmpty() && !conversation->model.isEmpty());
    if (buttonFocused && !m_send->hasFocus() && !m_stop->hasFocus())
        (generating ? static_cast<QWidget *>(m_stop) : m_input)->setFocus();
    m_escape->setEnabled(generating);
    if (std::exchange(m_wasGenerating, generating) != generating)
        m_announcer->announce(generating ? tr("A reply is being written") : tr("The reply has ended"));
}

void ChatPane::send()
{
    const QString draft = m_input->draft();
    if (draft.trimmed().isEmpty() || isGenerating())
        return;
    if (m_state.send(draft, m_id))
        m_input->clear();
    else if (m_state.generatingID())
        m_state.setBanner(tr("A reply is still being written in another chat. Send this when it has ended."));
}

void ChatPane::refuse(const QString &reason)
{
    m_state.setBanner(reason + u' ' + FieldText::limits());
}

void ChatPane::edit()
{
    const Conversation *conversation = m_state.chats().find(m_id);
    if (conversation && !conversation->messages.isEmpty() &&
        !FieldText::holds(conversation->messages.last().content))
        return refuse(tr("This message is too long to be edited."));
    const std::optional<QString> draft = m_state.takeLastUserMessage(m_id);
    if (!draft)
        return;
    // What was being written meanwhile stays behind it.
    const QString written = m_input->draft();
    setDraft(written.trimmed().isEmpty() ? *draft : *draft + "\n\n"_L1 + written);
    focusInput();
}
