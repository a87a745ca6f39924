#include "ui/models/ModelsView.h"

#include "core/app/AppState.h"
#include "platform/text/ByteCount.h"
#include "platform/text/OutsideText.h"
#include "platform/text/Trimming.h"
#include "ui/engine/EngineBanner.h"
#include "ui/models/FitBadge.h"
#include "ui/models/ModelDetailsView.h"
#include "ui/models/ModelRow.h"
#include "ui/models/OtherModels.h"
#include "ui/widgets/Card.h"
#include "ui/widgets/ConfirmationDialog.h"
#include "ui/widgets/LazyColumn.h"
#include "ui/widgets/LineEdit.h"
#include "ui/widgets/ProminentButton.h"
#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/SymbolLabel.h"
#include "ui/widgets/TextLabel.h"

using namespace Qt::StringLiterals;

ModelsView::ModelsView(AppState &state, QWidget *parent)
    : ScrollPage(parent),
      m_state(state),
      m_others(new QWidget),
      m_otherColumn(new LazyColumn(
          *this, 8, [this](const QString &name) { return makeRow(name, std::nullopt, false); })),
      m_add(new Card),
      m_custom(new LineEdit),
      m_download(new ProminentButton(tr("Download")))
{
    column()->setSpacing(0);
    column()->addWidget(new EngineBanner(state));
    column()->addWidget(makeHeader());
    column()->addSpacing(12);
    const QString best = ModelCatalog::bestPick(state.memory()).name;
    for (const CatalogModel &model : ModelCatalog::models()) {
        m_catalogRows.append(makeRow(model.name, model, model.name == best));
        column()->addWidget(m_catalogRows.last());
        column()->addSpacing(8);
    }
    auto *others = new QVBoxLayout(m_others);
    others->setContentsMargins(0, 16, 0, 0);
    others->setSpacing(8);
    others->addWidget(new TextLabel(tr("Other models"), TextStyle::title2));
    others->addWidget(m_otherColumn);
    m_others->hide();
    column()->addWidget(m_others);
    auto *addHeading = new TextLabel(tr("Add any other model"), TextStyle::title2);
    addHeading->setContentsMargins(0, 16, 0, 8);
    column()->addWidget(addHeading);
    fillAddSection();
    column()->addWidget(m_add);
    column()->addStretch(1);

    connect(m_otherColumn, &LazyColumn::rowsMade, this, &ModelsView::orderFocus);
    // A place near it, rather than none.
    connect(m_otherColumn, &LazyColumn::focusLeaves, m_custom, qOverload<>(&QWidget::setFocus));
    connect(m_custom, &QLineEdit::returnPressed, this, [this] { download(); });
    connect(m_custom, &QLineEdit::textChanged, this, [this] { render(); });
    connect(m_download, &QPushButton::clicked, this, [this] { download(); });

    render();
    auto *scheduler = new RenderScheduler(this, [this] { render(); });
    scheduler->follow(&m_state, &AppState::installedChanged, &AppState::loadedChanged,
                      &AppState::unloadingChanged);
    scheduler->follow(&m_state.queue(), &DownloadQueue::itemsChanged);
}

QWidget *ModelsView::makeHeader()
{
    auto *title = new TextLabel(tr("Model library"), TextStyle::title);
    title->setBold();
    // A machine has less memory than a signed number can count.
    const QString memory = byteCountText(static_cast<qint64>(m_state.memory()));
    auto *header = new QWidget;
    auto *row = new QHBoxLayout(header);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(title, 0, Qt::AlignBaseline);
    row->addStretch(1);
    row->addWidget(new TextLabel(tr("This Mac: %1 memory").arg(memory), TextStyle::body, Tint::secondary), 0,
                   Qt::AlignBaseline);
    auto *help =
        new SymbolLabel(u"questionmark.circle"_s, TextStyle::body, Tint::secondary, FitBadge::ruleText());
    help->setToolTip(FitBadge::ruleText());
    row->addWidget(help);
    return header;
}

void ModelsView::fillAddSection()
{
    auto *explanation = new TextLabel(TextStyle::body, Tint::secondary);
    explanation->setTextFormat(Qt::RichText); // nothing in it comes from outside
    explanation->setText(tr("Its size is not known in advance.") + u' ' +
                         tr("You find names in the model library at %1.")
                             .arg(u"<a href=\"https://ollama.com/library\">ollama.com/library</a>"_s) +
                         u' ' + tr("I check for at least 2 GB of free disk space first."));
    explanation->setWrapping();
    explanation->setTextInteractionFlags(Qt::TextBrowserInteraction);
    explanation->setOpenExternalLinks(true);
    m_custom->setMaxLength(longestLine);
    m_custom->setPlaceholderText(tr("Model name, for example gemma3:4b"));
    m_custom->setAccessibleName(tr("Model name"));

    m_add->column()->addWidget(explanation);
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(m_custom, 1);
    row->addWidget(m_download);
    m_add->column()->addLayout(row);
}

ModelRow *ModelsView::makeRow(const QString &name, const std::optional<CatalogModel> &catalog, bool isBest)
{
    auto *row = new ModelRow(m_state, name, catalog, isBest);
    connect(row, &ModelRow::deleteRequested, this, &ModelsView::confirmDelete);
    connect(row, &ModelRow::detailsRequested, this, &ModelsView::showDetails);
    return row;
}

void ModelsView::render()
{
    for (ModelRow *row : std::as_const(m_catalogRows))
        row->render();
    renderOtherModels();
    m_download->setEnabled(!trimmedOfBlanks(m_custom->text()).isEmpty());
}

void ModelsView::renderOtherModels()
{
    const QList<ModelRow *> rows = otherRows();
    for (ModelRow *row : rows)
        row->render();
    const QList<DownloadItem> &items = m_state.queue().items();
    QStringList downloads;
    for (const DownloadItem &item : items)
        downloads.append(item.pullName);
    // An unchanged list is the very same one, and not gone through.
    if (m_state.installedIndex() == m_listedInstalled && downloads == m_listedDownloads)
        return;
    m_listedInstalled = m_state.installedIndex();
    m_listedDownloads = downloads;
    const QStringList names = otherModelNames(m_listedInstalled, items);
    m_otherColumn->setKeys(names);
    m_others->setHidden(names.isEmpty());
}

QList<ModelRow *> ModelsView::otherRows() const
{
    QList<ModelRow *> rows;
    const QList<QWidget *> made = m_otherColumn->rows();
    for (QWidget *row : made)
        rows.append(qobject_cast<ModelRow *>(row));
    return rows;
}

// The controls of a row that comes would be the window's last for the Tab key.
void ModelsView::orderFocus()
{
    QList<QWidget *> parts{m_catalogRows.last()};
    parts += m_otherColumn->rows();
    parts.append(m_add);
    QWidget *last = nullptr;
    for (const QWidget *part : std::as_const(parts)) {
        const QList<QWidget *> widgets = part->findChildren<QWidget *>();
        for (QWidget *widget : widgets) {
            if (!(widget->focusPolicy() & Qt::TabFocus))
                continue;
            if (last)
                setTabOrder(last, widget);
            last = widget;
        }
    }
}

void ModelsView::download()
{
    const QString name = trimmedOfBlanks(m_custom->text());
    if (name.isEmpty())
        return;
    if (m_state.queue().enqueue(name, std::nullopt))
        m_custom->clear();
}

void ModelsView::confirmDelete(const QString &name)
{
    constexpr qsizetype longestName = 500; // leaves room for the sentence
    auto *dialog = new ConfirmationDialog(
        {.title = tr("Delete this model?"),
         .message = tr("%1 will be removed from your disk. You can download it again later.")
                        .arg(isolated(shownLine(name, longestName))),
         .action = tr("Delete"),
         .destructive = true},
        this);
    connect(dialog, &QDialog::accepted, this, [this, name] { m_state.deleteModel(name); });
    dialog->open();
}

void ModelsView::showDetails(const QString &name)
{
    (new ModelDetailsView(m_state.engine().port(), name, this))->open();
}
