#include "ui/engine/EngineInstallView.h"

#include "core/engine/EngineManager.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/FocusKeeper.h"
#include "ui/widgets/ProgressBar.h"
#include "ui/widgets/ProminentButton.h"
#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/SelectableText.h"

#include <QHBoxLayout>

EngineInstallView::EngineInstallView(EngineManager &engine, QWidget *parent)
    : QWidget(parent),
      m_engine(engine),
      m_bar(new ProgressBar(tr("Installation progress"))),
      m_text(new ElidedLabel(TextStyle::caption, Tint::secondary)),
      m_cancel(new Button(tr("Cancel"))),
      m_install(new ProminentButton(tr("Install Ollama (about 170 MB)"))),
      m_choose(new Button(tr("Choose Ollama manually…"))),
      m_error(new SelectableText(TextStyle::caption, Tint::red))
{
    m_error->setAccessibleName(tr("Installation error"));
    auto *progress = new QHBoxLayout;
    progress->setSpacing(8);
    progress->addWidget(m_text, 1);
    progress->addWidget(m_cancel);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addWidget(m_install);
    buttons->addWidget(m_choose);
    buttons->addStretch(1);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(8);
    column->addWidget(m_bar);
    column->addLayout(progress);
    column->addLayout(buttons);
    column->addWidget(m_error);

    connect(m_install, &QPushButton::clicked, this, [this] { m_engine.startInstall(); });
    connect(m_choose, &QPushButton::clicked, this, [this] { m_engine.chooseManually(); });
    connect(m_cancel, &QPushButton::clicked, this, [this] { m_engine.installTask().requestStop(); });

    render();
    auto *scheduler = new RenderScheduler(this, [this] { render(); });
    scheduler->follow(&m_engine, &EngineManager::installChanged, &EngineManager::installErrorChanged);
}

void EngineInstallView::render()
{
    const FocusKeeper keeper(this);
    const std::optional<InstallStatus> &status = m_engine.install();
    const bool running = status.has_value();
    m_bar->setVisible(running);
    m_text->setVisible(running);
    m_cancel->setVisible(running);
    m_install->setVisible(!running);
    m_choose->setVisible(!running);
    if (running) {
        m_bar->showFraction(status->fraction);
        m_text->setText(status->text);
        m_cancel->setEnabled(status->cancellable);
    }
    m_error->showText(m_engine.installError().value_or(QString()));
    m_error->setVisible(m_engine.installError().has_value());
}
