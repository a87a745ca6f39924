#include "ui/engine/EngineBanner.h"

#include "core/app/AppState.h"
#include "ui/engine/EngineInstallView.h"
#include "ui/engine/ServerStatus.h"
#include "ui/widgets/Card.h"
#include "ui/widgets/FocusKeeper.h"
#include "ui/widgets/ProminentButton.h"
#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/SelectableText.h"
#include "ui/widgets/Spinner.h"
#include "ui/widgets/TextLabel.h"

#include <QHBoxLayout>

EngineBanner::EngineBanner(AppState &state, QWidget *parent)
    : QWidget(parent),
      m_state(state),
      m_card(new Card),
      m_spinner(new Spinner(16, tr("Starting the local server…"))),
      m_title(new TextLabel(TextStyle::headline)),
      m_failure(new SelectableText(TextStyle::headline)),
      m_progress(new TextLabel(TextStyle::body)),
      m_explanation(new TextLabel(tr("Models run through Ollama. One click gets it, no account needed."),
                                  TextStyle::callout, Tint::secondary)),
      m_install(new EngineInstallView(state.engine())),
      m_start(new ProminentButton(tr("Start server"))),
      m_details(new Button(tr("Open Server tab for details")))
{
    m_card->setFill(Tint::secondary, 0.12);
    m_title->setWrapping();
    m_failure->setAccessibleName(tr("Error message"));
    m_explanation->setWrapping();
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(m_spinner);
    row->addWidget(m_title, 1);
    row->addWidget(m_failure, 1, Qt::AlignVCenter);
    row->addWidget(m_progress, 1);
    row->addWidget(m_start);
    row->addWidget(m_details);
    m_card->column()->addLayout(row);
    m_card->column()->addWidget(m_explanation);
    m_card->column()->addWidget(m_install);
    auto *column = new QVBoxLayout(this);
    // Below the card, and gone with it.
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_card);

    connect(m_start, &QPushButton::clicked, this, [this] { m_state.setServer(true); });
    connect(m_details, &QPushButton::clicked, this, [this] { m_state.setTab(AppTab::server); });

    render();
    auto *scheduler = new RenderScheduler(this, [this] { render(); });
    scheduler->follow(&m_state.engine(), &EngineManager::stateChanged,
                      &EngineManager::previousIsEndingChanged);
}

void EngineBanner::render()
{
    using State = EngineManager::State;
    const State &state = m_state.engine().state();
    switch (state.kind) {
    case State::notInstalled:
        m_title->setText(tr("Ollama is not on this Mac yet"));
        break;
    case State::stopped:
        m_title->setText(tr("The local server is off"));
        break;
    case State::starting:
    case State::running:
    case State::failed:
        break;
    }
    const FocusKeeper keeper(this);
    const bool starting = state.kind == State::starting;
    const bool failed = state.kind == State::failed;
    m_failure->showText(state.message);
    m_failure->setVisible(failed);
    const QString remark = serverRemark(m_state.engine());
    m_progress->setText(remark.isEmpty() ? tr("Starting the local server…") : remark);
    m_spinner->setVisible(starting);
    m_progress->setVisible(starting);
    m_title->setVisible(!starting && !failed);
    m_explanation->setVisible(state.kind == State::notInstalled);
    m_install->setVisible(state.kind == State::notInstalled);
    m_start->setVisible(state.kind == State::stopped);
    m_details->setVisible(failed);
    m_card->setVisible(state.kind != State::running);
    layout()->setContentsMargins(0, 0, 0, m_card->isHidden() ? 0 : 16);
}
