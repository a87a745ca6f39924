#include "ui/models/ModelDetailsView.h"

#include "core/api/Friendly.h"
#include "core/api/OllamaClient.h"
#include "platform/text/OutsideText.h"
#include "platform/text/PluralForm.h"
#include "ui/widgets/Button.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/FocusRing.h"
#include "ui/widgets/ScrollPage.h"
#include "ui/widgets/SelectableText.h"
#include "ui/widgets/Spinner.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QPointer>
#include <QTextBoundaryFinder>

namespace {

// Code units and lines; far beyond any model's, and shown without a wait.
constexpr qsizetype longestText = 3000;
constexpr qsizetype longestValue = 200;
constexpr int mostLines = 200;
constexpr qsizetype mostCapabilities = 100; // there are about five

// As the user counts characters.
QString firstCharacters(const QString &text, int count)
{
    const QString start = text.left(longestText);
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, start);
    qsizetype end = 0;
    for (int character = 0; character < count && end >= 0; ++character)
        end = characters.toNextBoundary();
    return end < 0 ? start : start.first(end);
}

} // namespace

ModelDetailsView::ModelDetailsView(int port, const QString &model, QWidget *parent)
    : QDialog(parent),
      m_spinner(new Spinner(24, tr("Loading details"))),
      m_failure(new SelectableText(TextStyle::body, Tint::red)),
      m_page(new ScrollPage)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setAccessibleName(shownLine(model));
    resize(520, 460);
    auto *title = new ElidedLabel(model, TextStyle::title2);
    title->setElideMode(Qt::ElideMiddle);
    m_failure->setAccessibleName(tr("Error message"));
    m_page->setFocusPolicy(Qt::StrongFocus); // the keyboard has nothing else to scroll it with
    new FocusRing(m_page);
    m_page->setAccessibleName(tr("Details"));
    m_page->column()->setContentsMargins(0, 0, 8, 0);
    m_page->column()->setSpacing(8);
    auto *close = new Button(tr("Close"));
    auto *buttons = new QDialogButtonBox;
    buttons->addButton(close, QDialogButtonBox::RejectRole);
    close->setDefault(true);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(20, 20, 20, 16);
    column->setSpacing(12);
    column->addWidget(title);
    column->addWidget(m_spinner, 1, Qt::AlignCenter);
    column->addWidget(m_failure, 1);
    column->addWidget(m_page, 1);
    column->addWidget(buttons);
    close->setFocus();

    render();
    const QPointer<ModelDetailsView> self(this);
    m_request = Job([self, port, model](StopToken stop) { return load(self, port, model, stop); });
}

ModelDetailsView::~ModelDetailsView()
{
    m_request.requestStop();
}

Task<> ModelDetailsView::load(QPointer<ModelDetailsView> self, int port, QString model, StopToken stop)
{
    std::optional<ModelDetails> details;
    std::optional<QString> error;
    try {
        const OllamaClient client(port);
        details = co_await client.show(model, stop);
    } catch (...) {
        error = Friendly::message(std::current_exception());
    }
    if (stop.stopRequested() || !self)
        co_return;
    self->m_details = details;
    self->m_error = error;
    self->render();
}

void ModelDetailsView::render()
{
    m_spinner->setVisible(!m_details && !m_error);
    m_failure->showText(m_error.value_or(QString()));
    m_failure->setVisible(m_error.has_value());
    m_page->setVisible(m_details.has_value());
    if (m_details)
        renderDetails();
}

void ModelDetailsView::renderDetails()
{
    const ModelDetails &details = *m_details;
    addRow(tr("Family"), details.family);
    addRow(tr("Parameters"), details.parameterSize);
    addRow(tr("Quantization"), details.quantization);
    if (const std::optional<qint64> length = details.contextLength)
        addRow(tr("Context length"), tr("%1 tokens", nullptr, pluralForm(*length)).arg(*length));
    QStringList capabilities;
    for (const QString &capability :
         details.capabilities.first(qMin(mostCapabilities, details.capabilities.size())))
        capabilities.append(isolated(capability));
    addRow(tr("Capabilities"), capabilities.join(QLatin1String(", ")));
    addText(tr("Default settings"), details.parameters, true);
    constexpr int licenseLimit = 3000;
    addText(tr("License"), firstCharacters(details.license, licenseLimit), false);
    m_page->column()->addStretch(1);
}

void ModelDetailsView::addRow(const QString &label, const QString &value)
{
    if (value.isEmpty())
        return;
    auto *name = new TextLabel(label, TextStyle::body, Tint::secondary);
    name->setFixedWidth(120);
    name->setWrapping();
    auto *text = new SelectableText(TextStyle::body);
    text->setAccessibleName(label);
    text->showText(value, longestValue);
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(name, 0, Qt::AlignTop);
    row->addWidget(text, 1);
    m_page->column()->addLayout(row);
}

void ModelDetailsView::addText(const QString &heading, const QString &text, bool monospaced)
{
    if (text.isEmpty())
        return;
    auto *title = new TextLabel(heading, TextStyle::headline);
    title->setContentsMargins(0, 8, 0, 0);
    m_page->column()->addWidget(title);
    auto *body = new SelectableText(TextStyle::caption);
    if (monospaced)
        body->setMonospaced();
    body->setAccessibleName(heading);
    body->showText(text, longestText, mostLines);
    m_page->column()->addWidget(body);
}
