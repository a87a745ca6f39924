#include "ui/chat/ModelSettingsView.h"

#include "core/app/AppState.h"
#include "platform/text/OutsideText.h"
#include "ui/chat/PromptEditor.h"
#include "ui/widgets/ContinuousSlider.h"
#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/TextLabel.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QPushButton>

namespace {

constexpr int labelWidth = 110;

TextLabel *makeLabel(const QString &text, QWidget *control)
{
    auto *label = new TextLabel(text);
    label->setFixedWidth(labelWidth);
    label->setWrapping();
    label->setBuddy(control);
    control->setAccessibleName(text);
    return label;
}

QHBoxLayout *makeSliderRow(const QString &text, ContinuousSlider *slider, TextLabel *value)
{
    value->setFixedWidth(44);
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(makeLabel(text, slider));
    row->addWidget(slider, 1);
    row->addWidget(value);
    return row;
}

QHBoxLayout *makePickerRow(const QString &text, QComboBox *picker, int width)
{
    picker->setFixedWidth(width);
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(makeLabel(text, picker));
    row->addWidget(picker);
    row->addStretch(1);
    return row;
}

void showNumber(double number, ContinuousSlider *slider, TextLabel *text)
{
    slider->showNumber(number);
    text->setText(slider->numberText());
}

} // namespace

ModelSettingsView::ModelSettingsView(AppState &state, const QString &model, QWidget *parent)
    : QDialog(parent),
      m_state(state),
      m_model(model),
      m_prompt(new PromptEditor),
      m_temperature(new ContinuousSlider(2)),
      m_topP(new ContinuousSlider(1)),
      m_temperatureText(new TextLabel(TextStyle::body)),
      m_topPText(new TextLabel(TextStyle::body)),
      m_context(new QComboBox),
      m_keepLoaded(new QComboBox)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setFixedWidth(520);
    auto *title = new TextLabel(tr("Settings for %1").arg(isolated(model)), TextStyle::title3);
    title->setBold();
    title->setWrapping();
    setAccessibleName(title->text());
    auto *promptLabel = new TextLabel(tr("System prompt"), TextStyle::headline);
    promptLabel->setBuddy(m_prompt);
    m_prompt->setAccessibleName(promptLabel->text());
    m_prompt->setFixedHeight(90);
    auto *help = new TextLabel(tr("A bigger context lets the model remember more of the chat but uses more "
                                  "memory and is slower."),
                               TextStyle::caption, Tint::secondary);
    help->setWrapping();
    fillPickers();

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(20, 20, 20, 20);
    column->setSpacing(12);
    column->addWidget(title);
    column->addWidget(promptLabel);
    column->addWidget(m_prompt);
    column->addLayout(makeSliderRow(tr("Temperature"), m_temperature, m_temperatureText));
    column->addLayout(makeSliderRow(tr("Top P"), m_topP, m_topPText));
    column->addLayout(makePickerRow(tr("Context length"), m_context, 160));
    column->addWidget(help);
    column->addLayout(makePickerRow(tr("Keep loaded"), m_keepLoaded, 200));
    column->addWidget(makeButtons());
    connectControls();

    render();
    auto *scheduler = new RenderScheduler(this, [this] { render(); });
    scheduler->follow(&m_state, &AppState::modelSettingsChanged);
}

void ModelSettingsView::fillPickers()
{
    for (const int tokens : {2048, 4096, 8192, 16384, 32768, 65536, 131072})
        m_context->addItem(tr("%1 tokens").arg(QString::number(tokens)), tokens);
    m_keepLoaded->addItem(tr("Unload right away"), 0);
    m_keepLoaded->addItem(tr("5 minutes"), 5);
    m_keepLoaded->addItem(tr("30 minutes"), 30);
    m_keepLoaded->addItem(tr("2 hours"), 120);
    m_keepLoaded->addItem(tr("Until I stop the server"), -1);
}

QWidget *ModelSettingsView::makeButtons()
{
    auto *reset = new QPushButton(tr("Reset to defaults"));
    reset->setAutoDefault(false);
    auto *done = new QPushButton(tr("Done"));
    done->setDefault(true);
    connect(reset, &QPushButton::clicked, this, [this] { m_state.setSettings({}, m_model); });
    connect(done, &QPushButton::clicked, this, &QDialog::accept);
    auto *part = new QWidget;
    auto *row = new QHBoxLayout(part);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(reset);
    row->addStretch(1);
    row->addWidget(done);
    return part;
}

void ModelSettingsView::connectControls()
{
    connect(m_prompt, &PromptEditor::refused, this,
            [this] { m_state.setBanner(tr("The pasted text is too long.") + u' ' + FieldText::limits()); });
    connect(m_prompt, &PromptEditor::edited, this,
            [this](const QString &prompt) { store(&ModelSettings::systemPrompt, prompt); });
    connect(m_temperature, &ContinuousSlider::moved, this,
            [this](double number) { store(&ModelSettings::temperature, number); });
    connect(m_topP, &ContinuousSlider::moved, this,
            [this](double number) { store(&ModelSettings::topP, number); });
    connect(m_context, &QComboBox::activated, this,
            [this](int entry) { store(&ModelSettings::numCtx, m_context->itemData(entry).toInt()); });
    connect(m_keepLoaded, &QComboBox::activated, this, [this](int entry) {
        store(&ModelSettings::keepAliveMinutes, m_keepLoaded->itemData(entry).toInt());
    });
}

template <class Field, class Value>
void ModelSettingsView::store(Field ModelSettings::*field, const Value &value)
{
    ModelSettings settings = m_state.settings(m_model);
    if (settings.*field == value)
        return;
    settings.*field = value;
    m_state.setSettings(settings, m_model);
}

// A value that no picker offers is shown by none, and stays.
void ModelSettingsView::render()
{
    const ModelSettings settings = m_state.settings(m_model);
    m_prompt->showPrompt(settings.systemPrompt);
    showNumber(settings.temperature, m_temperature, m_temperatureText);
    showNumber(settings.topP, m_topP, m_topPText);
    m_context->setCurrentIndex(m_context->findData(settings.numCtx));
    m_keepLoaded->setCurrentIndex(m_keepLoaded->findData(settings.keepAliveMinutes));
}
