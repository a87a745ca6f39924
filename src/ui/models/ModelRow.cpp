#include "ui/models/ModelRow.h"

#include "core/app/AppState.h"
#include "platform/text/ByteCount.h"
#include "platform/text/OutsideText.h"
#include "ui/models/DownloadProgressView.h"
#include "ui/models/FitBadge.h"
#include "ui/widgets/BorderlessButton.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/FocusKeeper.h"
#include "ui/widgets/ProminentButton.h"
#include "ui/widgets/Spinner.h"
#include "ui/widgets/StatusDot.h"
#include "ui/widgets/SymbolLabel.h"

#include <QHBoxLayout>

using namespace Qt::StringLiterals;

ModelRow::ModelRow(AppState &state, const QString &name, const std::optional<CatalogModel> &catalog,
                   bool isBest, QWidget *parent)
    : Card(parent),
      m_state(state),
      m_name(name),
      m_catalog(catalog),
      m_size(new TextLabel(TextStyle::callout, Tint::secondary)),
      m_progress(new DownloadProgressView(state.queue())),
      m_installed(new QWidget),
      m_download(new ProminentButton(tr("Download"))),
      m_chat(new ProminentButton(tr("Chat"))),
      m_loaded(new QWidget),
      m_inMemory(new StatusDot(8, Tint::green)),
      m_unloading(new Spinner(12, tr("Unloading"))),
      m_unload(new Button(tr("Unload")))
{
    const QString shownName = shownLine(name);
    setAccessibleName(shownName);
    if (isBest)
        setFill(Tint::yellow, 0.1);
    auto *row = new QHBoxLayout;
    row->setSpacing(16);
    row->addLayout(makeTexts(isBest), 1);
    row->addWidget(makeActions());
    column()->addLayout(row);
    const QList<QAbstractButton *> buttons = findChildren<QAbstractButton *>();
    for (QAbstractButton *button : buttons)
        button->setAccessibleDescription(shownName); // there is one like it in every row

    connect(m_download, &QPushButton::clicked, this, [this] {
        m_state.queue().enqueue(m_name, m_catalog ? std::optional(m_catalog->sizeBytes) : std::nullopt);
    });
    render();
}

QBoxLayout *ModelRow::makeTexts(bool isBest)
{
    auto *first = new QHBoxLayout;
    first->setSpacing(8);
    auto *name = new ElidedLabel(m_name, TextStyle::headline);
    name->setElideMode(Qt::ElideMiddle); // what tells variants of a model apart stands at the end
    name->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
    first->addWidget(name);
    if (isBest) {
        const QString tip = tr("Best pick for this Mac's memory");
        auto *star = new SymbolLabel(u"star.fill"_s, TextStyle::headline, Tint::yellow, tip);
        star->setToolTip(tip);
        first->addWidget(star);
    }
    if (m_catalog)
        first->addWidget(new FitBadge(ModelCatalog::fit(m_catalog->sizeBytes, m_state.memory())));
    first->addStretch(1);

    auto *texts = new QVBoxLayout;
    texts->setSpacing(4);
    texts->addStretch(1);
    texts->addLayout(first);
    if (m_catalog) {
        auto *bestFor = new TextLabel(m_catalog->bestFor);
        bestFor->setWrapping();
        texts->addWidget(bestFor);
    }
    m_size->setWrapping();
    texts->addWidget(m_size);
    texts->addStretch(1);
    return texts;
}

QWidget *ModelRow::makeActions()
{
    fillInstalled();
    auto *actions = new QWidget;
    actions->setFixedWidth(270);
    auto *actionsColumn = new QVBoxLayout(actions);
    actionsColumn->setContentsMargins(0, 0, 0, 0);
    actionsColumn->addStretch(1);
    actionsColumn->addWidget(m_progress);
    actionsColumn->addWidget(m_installed);
    actionsColumn->addWidget(m_download, 0, Qt::AlignTrailing);
    actionsColumn->addStretch(1);
    return actions;
}

void ModelRow::fillInstalled()
{
    auto *details = new Button(tr("Details"));
    auto *trash = new BorderlessButton(u"trash"_s, tr("Delete this model"));
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addStretch(1);
    buttons->addWidget(m_chat);
    buttons->addWidget(details);
    buttons->addWidget(trash);

    m_unload->setTextStyle(TextStyle::callout);
    auto *loaded = new QHBoxLayout(m_loaded);
    loaded->setContentsMargins(0, 0, 0, 0);
    loaded->setSpacing(8);
    loaded->addStretch(1);
    loaded->addWidget(m_inMemory);
    loaded->addWidget(m_unloading);
    loaded->addWidget(new ElidedLabel(tr("Loaded in memory"), TextStyle::callout));
    loaded->addWidget(m_unload);

    auto *part = new QVBoxLayout(m_installed);
    part->setContentsMargins(0, 0, 0, 0);
    part->setSpacing(8);
    part->addLayout(buttons);
    part->addWidget(m_loaded);

    connect(m_chat, &QPushButton::clicked, this, [this] { m_state.openChat(m_installedName); });
    connect(details, &QPushButton::clicked, this, [this] { Q_EMIT detailsRequested(m_installedName); });
    connect(trash, &QToolButton::clicked, this, [this] { Q_EMIT deleteRequested(m_installedName); });
    connect(m_unload, &QPushButton::clicked, this, [this] { m_state.unload(m_installedName); });
}

void ModelRow::render()
{
    const InstalledModel *const installed = m_state.findInstalled(m_name);
    m_installedName = installed ? installed->name : QString();
    if (m_catalog)
        m_size->setText(m_catalog->note.isEmpty() ? m_catalog->sizeLabel
                                                  : m_catalog->sizeLabel + u" · "_s + m_catalog->note);
    else
        m_size->setText(installed ? byteCountText(installed->size) : tr("size not known in advance"));

    const FocusKeeper keeper(this);
    const DownloadItem *item = m_state.queue().item(m_name);
    if (item)
        m_progress->showItem(*item);
    m_progress->setVisible(item != nullptr);
    m_loaded->setVisible(installed && m_state.isLoaded(m_installedName));
    m_installed->setVisible(!item && installed);
    m_download->setVisible(!item && !installed);
    renderUnloading(m_state.isUnloading(m_installedName));
}

void ModelRow::renderUnloading(bool unloading)
{
    m_inMemory->setVisible(!unloading);
    m_unloading->setVisible(unloading);
    // Disabled, it would hand the focus to the next row.
    if (unloading && m_unload->hasFocus())
        m_chat->setFocus();
    m_unload->setDisabled(unloading);
}
