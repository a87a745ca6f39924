#include "ui/engine/NetworkCard.h"

#include "core/engine/EngineManager.h"
#include "ui/engine/ServerRestart.h"
#include "ui/widgets/ConfirmationDialog.h"
#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/Switch.h"
#include "ui/widgets/TextLabel.h"

NetworkCard::NetworkCard(EngineManager &engine, QWidget *parent)
    : Card(parent),
      m_engine(engine),
      m_share(new Switch(tr("Share on my network"))),
      m_caption(new TextLabel(TextStyle::caption, Tint::secondary))
{
    m_caption->setWrapping();
    addHeading(tr("Network"));
    column()->addWidget(m_share, 0, Qt::AlignLeading);
    column()->addWidget(m_caption);

    connect(m_share, &Switch::clicked, this, [this](bool on) {
        if (on)
            confirmShare();
        else
            setShare(false);
        render();
    });

    render();
    auto *scheduler = new RenderScheduler(this, [this] { render(); });
    scheduler->follow(&m_engine, &EngineManager::shareOnNetworkChanged, &EngineManager::portChanged);
}

void NetworkCard::render()
{
    m_share->setChecked(m_engine.shareOnNetwork());
    m_caption->setText(
        tr("Off by default. When on, the server listens on all network interfaces (0.0.0.0:%1) and anyone on "
           "your network could use it.")
            .arg(QString::number(m_engine.port())));
}

void NetworkCard::confirmShare()
{
    auto *dialog = new ConfirmationDialog(
        {.title = tr("Share on your network?"),
         .message = tr("Anyone on your network could use this server and your models, with no password."),
         .action = tr("Share")},
        this);
    connect(dialog, &QDialog::accepted, this, [this] { setShare(true); });
    dialog->open();
}

void NetworkCard::setShare(bool share)
{
    m_engine.setShareOnNetwork(share);
    // Also one that an installation has left running, which goes by the old setting.
    if (m_engine.isOn() || m_engine.hasEngine())
        restartServer(m_engine);
}
