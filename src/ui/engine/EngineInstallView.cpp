#include "ui/engine/EngineInstallView.h"

#include "core/engine/EngineManager.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/FocusKeeper.h"
#include "ui/widgets/ProgressBar.h"
#include "ui/widgets/ProminentButton.h"
#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/SelectableText.h"

#include <QHBoxLayout>

namespace {

using Offer = EngineInstallView::Offer;

Button *installButton(Offer offer)
{
    if (offer == Offer::first)
        return new ProminentButton(EngineInstallView::tr("Install Ollama (about 170 MB)"));
    return new Button(EngineInstallView::tr("Reinstall the latest Ollama"));
}

QString choiceText(Offer offer)
{
    return offer == Offer::first ? EngineInstallView::tr("Choose Ollama manually…")
                                 : EngineInstallView::tr("Choose another…");
}

} // namespace

EngineInstallView::EngineInstallView(EngineManager &engine, Offer offer, QWidget *parent)
    : QWidget(parent),
      m_engine(engine),
      m_bar(new ProgressBar(tr("Installation progress"))),
      m_text(new ElidedLabel(TextStyle::caption, Tint::secondary)),
      m_cancel(new Button(tr("Cancel"))),
      m_install(installButton(offer)),
      m_choose(new Button(choiceText(offer))),
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
    scheduler->follow(&m_engine, &EngineManager::installChanged, &EngineManager::installErrorChanged,
                      &EngineManager::choiceCheckChanged);
}

void EngineInstallView::render()
{
    const FocusKeeper keeper(this);
    const bool installs = m_engine.install().has_value();
    const bool checks = m_engine.isCheckingChoice();
    const InstallStatus status = m_engine.install().value_or(
        InstallStatus{.text = tr("Checking that it runs…"), .cancellable = false});
    m_bar->setVisible(installs || checks);
    m_bar->showFraction(status.fraction);
    m_text->setVisible(installs || checks);
    m_text->setText(status.text);
    m_cancel->setVisible(installs);
    m_cancel->setEnabled(status.cancellable);
    // Also while a chosen program is checked: it may never end.
    m_install->setVisible(!installs);
    m_choose->setVisible(!installs);
    m_error->showText(m_engine.installError().value_or(QString()));
    m_error->setVisible(m_engine.installError().has_value());
}
