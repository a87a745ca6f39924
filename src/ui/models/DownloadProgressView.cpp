#include "ui/models/DownloadProgressView.h"

#include "core/models/DownloadQueue.h"
#include "core/models/Fmt.h"
#include "ui/widgets/Button.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/FocusKeeper.h"
#include "ui/widgets/ProgressBar.h"
#include "ui/widgets/SelectableText.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

DownloadProgressView::DownloadProgressView(DownloadQueue &queue, Qt::AlignmentFlag buttons, QWidget *parent)
    : QWidget(parent),
      m_bar(new ProgressBar(tr("Download progress"))),
      m_phase(new TextLabel(TextStyle::callout, Tint::secondary)),
      m_reason(new SelectableText(TextStyle::callout, Tint::red)),
      m_progress(new TextLabel(TextStyle::callout, Tint::secondary)),
      m_status(new ElidedLabel(TextStyle::caption, Tint::secondary)),
      m_cancel(new Button(tr("Cancel"))),
      m_resume(new Button(tr("Resume"))),
      m_dismiss(new Button(tr("Dismiss")))
{
    m_phase->setWrapping();
    m_reason->setAccessibleName(tr("Error message"));
    m_progress->setWrapping();
    m_progress->setAlignment(Qt::AlignTop);
    lay(buttons);

    connect(m_cancel, &QPushButton::clicked, this, [this, &queue] { queue.cancel(m_item.id); });
    connect(m_dismiss, &QPushButton::clicked, this, [this, &queue] { queue.dismiss(m_item.id); });
    connect(m_resume, &QPushButton::clicked, this,
            [this, &queue] { queue.enqueue(m_item.pullName, m_item.knownSize); });
}

void DownloadProgressView::lay(Qt::AlignmentFlag buttons)
{
    auto *first = new QHBoxLayout;
    first->setSpacing(12);
    first->addWidget(m_bar, 1);
    first->addWidget(m_phase, 1);
    first->addWidget(m_cancel);
    auto *last = new QHBoxLayout;
    last->setSpacing(8);
    last->addStretch(buttons == Qt::AlignTrailing ? 1 : 0);
    last->addWidget(m_resume);
    last->addWidget(m_dismiss);
    last->addStretch(buttons == Qt::AlignTrailing ? 0 : 1);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    column->addLayout(first);
    column->addWidget(m_reason);
    column->addWidget(m_progress);
    column->addWidget(m_status);
    column->addLayout(last);
}

void DownloadProgressView::showItem(const DownloadItem &item)
{
    using Phase = DownloadItem::Phase;
    const FocusKeeper keeper(this);
    const Phase::Kind kind = item.phase.kind;
    const bool running = kind == Phase::running;
    const bool over = kind == Phase::failed || kind == Phase::cancelled;
    m_item = item;
    if (running)
        showProgress(item);
    else
        m_progress->setMinimumHeight(0);
    m_phase->setText(kind == Phase::queued ? tr("Waiting in the queue…") : tr("Download paused"));
    m_phase->setVisible(kind == Phase::queued || kind == Phase::cancelled);
    m_reason->showText(item.phase.message);
    m_reason->setVisible(kind == Phase::failed);
    m_bar->setVisible(running);
    m_progress->setVisible(running);
    m_status->setVisible(running);
    m_cancel->setVisible(!over);
    m_resume->setVisible(over);
    m_dismiss->setVisible(over);
}

void DownloadProgressView::showProgress(const DownloadItem &item)
{
    m_progress->setText(Fmt::progress(item));
    // Once it took two lines it keeps them, or the page would jump with every digit.
    if (m_progress->isVisible())
        m_progress->setMinimumHeight(
            qMax(m_progress->minimumHeight(), m_progress->heightForWidth(m_progress->width())));
    m_status->setText(item.status);
    m_bar->showFraction(item.total < 1 ? std::nullopt
                                       : std::optional(static_cast<double>(item.completed) /
                                                       static_cast<double>(item.total)));
}
