#include "ui/engine/EngineCard.h"

#include "core/engine/EngineManager.h"
#include "platform/text/OutsideText.h"
#include "ui/engine/EngineInstallView.h"
#include "ui/widgets/Button.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/FocusKeeper.h"
#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/SelectableText.h"

#include <QHBoxLayout>

EngineCard::EngineCard(EngineManager &engine, QWidget *parent)
    : Card(parent),
      m_engine(engine),
      m_path(new ElidedLabel(TextStyle::callout)),
      m_version(new ElidedLabel(TextStyle::caption, Tint::secondary)),
      m_install(new EngineInstallView(engine)),
      m_error(new SelectableText(TextStyle::caption, Tint::red)),
      m_replacement(new QWidget)
{
    m_path->setElideMode(Qt::ElideMiddle);
    fillReplacement();
    addHeading(tr("Engine (Ollama)"));
    column()->addWidget(m_path);
    column()->addWidget(m_version);
    column()->addWidget(m_install);
    column()->addWidget(m_replacement);

    render();
    auto *scheduler = new RenderScheduler(this, [this] { render(); });
    scheduler->follow(&m_engine, &EngineManager::enginePathChanged, &EngineManager::engineVersionChanged,
                      &EngineManager::installChanged, &EngineManager::installErrorChanged);
}

void EngineCard::fillReplacement()
{
    auto *reinstall = new Button(tr("Reinstall the latest Ollama"));
    auto *choose = new Button(tr("Choose another…"));
    connect(reinstall, &QPushButton::clicked, this, [this] { m_engine.startInstall(); });
    connect(choose, &QPushButton::clicked, this, [this] { m_engine.chooseManually(); });
    m_error->setAccessibleName(tr("Installation error"));
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(reinstall);
    row->addWidget(choose);
    row->addStretch(1);
    auto *part = new QVBoxLayout(m_replacement);
    part->setContentsMargins(0, 0, 0, 0);
    part->setSpacing(8);
    part->addLayout(row);
    part->addWidget(m_error);
}

void EngineCard::render()
{
    const FocusKeeper keeper(this);
    const bool found = !m_engine.enginePath().isEmpty();
    const bool installing = m_engine.install().has_value();
    m_path->setText(found ? tr("Found at %1").arg(isolated(m_engine.enginePath()))
                          : tr("Ollama was not found on this Mac."));
    m_version->setText(tr("Version %1").arg(isolated(m_engine.engineVersion())));
    m_version->setVisible(found && !m_engine.engineVersion().isEmpty());
    m_install->setVisible(!found || installing);
    m_replacement->setVisible(found && !installing);
    m_error->showText(m_engine.installError().value_or(QString()));
    m_error->setVisible(m_engine.installError().has_value());
}
