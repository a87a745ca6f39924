#include "ui/engine/ServerToolbar.h"

#include "core/app/AppState.h"
#include "platform/desktop/Desktop.h"
#include "ui/engine/ServerStatus.h"
#include "ui/widgets/BorderlessButton.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/StatusDot.h"
#include "ui/widgets/Switch.h"

#include <QHBoxLayout>

using namespace Qt::StringLiterals;

ServerToolbar::ServerToolbar(AppState &state, Desktop &desktop, QWidget *parent)
    : QWidget(parent),
      m_state(state),
      m_dot(new StatusDot(10)),
      m_switch(new Switch(tr("Local server"))),
      m_address(new ElidedLabel(TextStyle::callout, Tint::secondary))
{
    m_address->setMonospaced();
    m_address->setAccessibleDescription(tr("Server address"));
    auto *copy =
        new BorderlessButton(u"doc.on.doc"_s, tr("Copy the server address so other tools can use it"));
    copy->setIconSize({16, 16});
    copy->setWords(tr("Copy"));

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(8, 4, 8, 4);
    row->setSpacing(10);
    row->addWidget(m_dot);
    row->addWidget(m_switch);
    row->addSpacing(6);
    row->addWidget(m_address);
    row->addWidget(copy);

    connect(m_switch, &Switch::clicked, this, [this](bool on) {
        m_state.setServer(on);
        render();
    });
    connect(copy, &QToolButton::clicked, this,
            [this, &desktop] { desktop.copyText(m_state.engine().address()); });

    render();
    auto *scheduler = new RenderScheduler(this, [this] { render(); });
    scheduler->follow(&m_state.engine(), &EngineManager::stateChanged, &EngineManager::enginePathChanged,
                      &EngineManager::portChanged);
}

void ServerToolbar::render()
{
    const EngineManager &engine = m_state.engine();
    const ServerStatus status = serverStatus(engine.state().kind);
    m_dot->setTint(status.tint);
    m_dot->setToolTip(status.text);
    m_dot->setAccessibleName(status.text);
    m_switch->setChecked(engine.isOn());
    m_switch->setEnabled(!engine.enginePath().isEmpty());
    m_address->setText(engine.address());
}
