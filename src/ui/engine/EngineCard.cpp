#include "ui/engine/EngineCard.h"

#include "core/engine/EngineManager.h"
#include "core/engine/EngineVersion.h"
#include "platform/text/OutsideText.h"
#include "ui/engine/EngineInstallView.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/FocusKeeper.h"
#include "ui/widgets/RenderScheduler.h"

EngineCard::EngineCard(EngineManager &engine, QWidget *parent)
    : Card(parent),
      m_engine(engine),
      m_path(new ElidedLabel(TextStyle::callout)),
      m_version(new ElidedLabel(TextStyle::caption, Tint::secondary)),
      m_first(new EngineInstallView(engine)),
      m_another(new EngineInstallView(engine, EngineInstallView::Offer::another))
{
    m_path->setElideMode(Qt::ElideMiddle);
    addHeading(tr("Engine (Ollama)"));
    column()->addWidget(m_path);
    column()->addWidget(m_version);
    column()->addWidget(m_first);
    column()->addWidget(m_another);

    render();
    auto *scheduler = new RenderScheduler(this, [this] { render(); });
    scheduler->follow(&m_engine, &EngineManager::enginePathChanged, &EngineManager::engineVersionChanged);
}

void EngineCard::render()
{
    const FocusKeeper keeper(this);
    const bool found = !m_engine.enginePath().isEmpty();
    m_path->setText(found ? tr("Found at %1").arg(isolated(m_engine.enginePath()))
                          : tr("Ollama was not found on this Mac."));
    m_version->setText(tr("Version %1").arg(isolated(shownVersion(m_engine.engineVersion()))));
    m_version->setVisible(found && !m_engine.engineVersion().isEmpty());
    m_first->setVisible(!found);
    m_another->setVisible(found);
}
