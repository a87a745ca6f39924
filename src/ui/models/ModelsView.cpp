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
#include "ui/widgets/ProminentButton.h"
#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/SymbolLabel.h"
#include "ui/widgets/TextLabel.h"

#include <QLineEdit>

using namespace Qt::StringLiterals;

ModelsView::ModelsView(AppState &state, QWidget *parent)
    : ScrollPage(parent),
      m_state(state),
      m_others(new QWidget),
      m_otherColumn(new QVBoxLayout),
      m_add(new Card),
      m_custom(new QLineEdit),
      m_download(new ProminentButton(tr("Download")))
{
    column()->setSpacing(0);
    column()->addWidget(new EngineBanner(state));
    column()->addWidget(makeHeader());
    column()->addSpacing(12);
    const QString best = ModelCatalog::bestPick(state.memory()).name;
    for (const CatalogModel &model : ModelCatalog::models()) {
        m_catalogRows.append(new ModelRow(state, model.name, model, model.name == best));
        adopt(m_catalogRows.last());
        column()->addWidget(m_catalogRows.last());
        column()->addSpacing(8);
    }
    auto *others = new QVBoxLayout(m_others);
    others->setContentsMargins(0, 16, 0, 0);
    others->setSpacing(8);
    others->addWidget(new TextLabel(tr("Other models"), TextStyle::title2));
    others->addLayout(m_otherColumn);
    m_otherColumn->setSpacing(8);
    column()->addWidget(m_others);
    auto *addHeading = new TextLabel(tr("Add any other model"), TextStyle::title2);
    addHeading->setContentsMargins(0, 16, 0, 8);
    column()->addWidget(addHeading);
    fillAddSection();
    column()->addWidget(m_add);
    column()->addStretch(1);

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
    m_custom->setPlaceholderText(tr("Model name, for example gemma3:4b"));
    m_custom->setAccessibleName(tr("Model name"));

    m_add->column()->addWidget(explanation);
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(m_custom, 1);
    row->addWidget(m_download);
    m_add->column()->addLayout(row);
}

void ModelsView::adopt(ModelRow *row)
{
    connect(row, &ModelRow::deleteRequested, this, &ModelsView::confirmDelete);
    connect(row, &ModelRow::detailsRequested, this, &ModelsView::showDetails);
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
    const QStringList names = otherModelNames(m_state.installed(), m_state.queue().items());
    QList<ModelRow *> rows;
    for (const QString &name : names) {
        const auto known = std::find_if(m_otherRows.begin(), m_otherRows.end(),
                                        [&](const ModelRow *row) { return row->name() == name; });
        if (known != m_otherRows.end()) {
            rows.append(*known);
            m_otherRows.erase(known);
            rows.last()->render();
        } else {
            rows.append(new ModelRow(m_state, name, std::nullopt, false));
            adopt(rows.last());
        }
    }
    for (const ModelRow *gone : std::as_const(m_otherRows)) {
        if (gone->isAncestorOf(window()->focusWidget()))
            m_custom->setFocus(); // a place near it, rather than none
        delete gone;
    }
    m_otherRows = rows;
    bool moved = false;
    for (int place = 0; place < rows.size(); ++place) {
        if (m_otherColumn->indexOf(rows.at(place)) == place)
            continue;
        m_otherColumn->insertWidget(place, rows.at(place));
        moved = true;
    }
    if (moved)
        orderFocus();
    m_others->setVisible(!rows.isEmpty());
}

// The controls of a row that comes would be the window's last for the Tab key.
void ModelsView::orderFocus()
{
    QList<QWidget *> parts{m_catalogRows.last()};
    for (ModelRow *row : std::as_const(m_otherRows))
        parts.append(row);
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
    m_state.queue().enqueue(name, std::nullopt);
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
