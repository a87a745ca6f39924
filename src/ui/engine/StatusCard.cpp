#include "ui/engine/StatusCard.h"

#include "core/app/AppState.h"
#include "platform/async/Launch.h"
#include "platform/desktop/Desktop.h"
#include "ui/engine/ServerStatus.h"
#include "ui/widgets/FocusKeeper.h"
#include "ui/widgets/ProminentButton.h"
#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/SelectableText.h"
#include "ui/widgets/StatusDot.h"
#include "ui/widgets/TextLabel.h"

#include <QHBoxLayout>
#include <QPointer>

StatusCard::StatusCard(AppState &state, Desktop &desktop, QWidget *parent)
    : Card(parent),
      m_state(state),
      m_dot(new StatusDot(12)),
      m_status(new TextLabel(TextStyle::headline)),
      m_remark(new TextLabel(TextStyle::callout, Tint::secondary)),
      m_start(new ProminentButton(tr("Start server"))),
      m_stop(new Button(tr("Stop server"))),
      m_failure(new SelectableText(TextStyle::body, Tint::red)),
      m_otherPort(new Button(tr("Use another port"))),
      m_address(new TextLabel(TextStyle::body)),
      m_running(new QWidget)
{
    m_remark->setWrapping();
    m_failure->setAccessibleName(tr("Error message"));
    fillAddress(desktop);
    auto *top = new QHBoxLayout;
    top->setSpacing(8);
    top->addWidget(m_dot);
    top->addWidget(m_status);
    top->addStretch(1);
    top->addWidget(m_start);
    top->addWidget(m_stop);
    addHeading(tr("Status"));
    column()->addLayout(top);
    column()->addWidget(m_remark);
    column()->addWidget(m_failure);
    column()->addWidget(m_otherPort, 0, Qt::AlignLeading);
    column()->addWidget(m_running);

    connect(m_start, &QPushButton::clicked, this, [this] { m_state.setServer(true); });
    connect(m_stop, &QPushButton::clicked, this, [this] { m_state.setServer(false); });
    connect(m_otherPort, &QPushButton::clicked, this,
            [this] { launch([engine = &m_state.engine()] { return engine->useAnotherPort(); }); });

    render();
    auto *scheduler = new RenderScheduler(this, [this] { render(); });
    scheduler->follow(&m_state.engine(), &EngineManager::stateChanged, &EngineManager::portChanged,
                      &EngineManager::portConflictChanged, &EngineManager::previousIsEndingChanged);
}

void StatusCard::fillAddress(Desktop &desktop)
{
    auto *copy = new Button(tr("Copy"));
    connect(copy, &QPushButton::clicked, this,
            [this, &desktop] { desktop.copyText(m_state.engine().address()); });
    m_address->setMonospaced();
    m_address->setSelectable();
    auto *row = new QHBoxLayout;
    row->setSpacing(12);
    row->addWidget(m_address);
    row->addWidget(copy);
    row->addStretch(1);
    auto *caption = new TextLabel(tr("Other tools on this Mac can use this address as their Ollama URL."),
                                  TextStyle::caption, Tint::secondary);
    caption->setWrapping();
    auto *part = new QVBoxLayout(m_running);
    part->setContentsMargins(0, 0, 0, 0);
    part->setSpacing(4);
    part->addLayout(row);
    part->addWidget(caption);
}

void StatusCard::render()
{
    const FocusKeeper keeper(this);
    const EngineManager &engine = m_state.engine();
    const EngineManager::State &state = engine.state();
    const ServerStatus status = serverStatus(state.kind);
    const bool failed = state.kind == EngineManager::State::failed;
    m_dot->setTint(status.tint);
    m_status->setText(status.text);
    m_start->setVisible(!engine.isOn());
    m_stop->setVisible(engine.isOn());
    const QString remark = serverRemark(engine);
    m_remark->setText(remark);
    m_remark->setVisible(!remark.isEmpty());
    m_failure->showText(state.message);
    m_failure->setVisible(failed);
    m_otherPort->setVisible(failed && engine.portConflict());
    m_address->setText(engine.address());
    m_running->setVisible(state.kind == EngineManager::State::running);
}
