// The sheet with the settings of one model. Every change is stored at once; closing the sheet only closes it.
#pragma once

#include <QDialog>

class AppState;
class ContinuousSlider;
class PromptEditor;
class TextLabel;
class QComboBox;
struct ModelSettings;

// To be shown with open(); deletes itself when it closes.
class ModelSettingsView : public QDialog
{
    Q_OBJECT

public:
    // `model` is the name under which the settings are stored.
    ModelSettingsView(AppState &state, const QString &model, QWidget *parent);

private:
    void fillPickers();
    QWidget *makeButtons();
    void connectControls();
    void render();
    template <class Field, class Value>
    void store(Field ModelSettings::*field, const Value &value);

    AppState &m_state;
    const QString m_model;
    PromptEditor *const m_prompt;
    ContinuousSlider *const m_temperature;
    ContinuousSlider *const m_topP;
    TextLabel *const m_temperatureText;
    TextLabel *const m_topPText;
    QComboBox *const m_context;
    QComboBox *const m_keepLoaded;
};
