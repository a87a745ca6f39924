#include "ui/engine/DetailsCard.h"

#include "core/engine/EngineManager.h"
#include "ui/engine/LogBox.h"
#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/TextLabel.h"

DetailsCard::DetailsCard(EngineManager &engine, QWidget *parent)
    : Card(parent),
      m_engine(engine),
      m_empty(new TextLabel(tr("No output yet."), TextStyle::caption, Tint::secondary)),
      m_log(new LogBox)
{
    addHeading(tr("Details"));
    column()->addWidget(m_empty);
    column()->addWidget(m_log);

    render();
    auto *scheduler = new RenderScheduler(this, [this] { render(); });
    scheduler->follow(&m_engine, &EngineManager::logLinesChanged);
}

void DetailsCard::render()
{
    m_log->showLines(m_engine.logLines());
    m_log->setVisible(!m_engine.logLines().isEmpty());
    m_empty->setVisible(m_engine.logLines().isEmpty());
}
