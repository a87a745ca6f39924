// What stands between the user and a running engine, as a card with the action that helps; empty while the
// engine runs.
#pragma once

#include <QWidget>

class AppState;
class Button;
class Card;
class EngineInstallView;
class ProminentButton;
class SelectableText;
class Spinner;
class TextLabel;

class EngineBanner : public QWidget
{
    Q_OBJECT

public:
    explicit EngineBanner(AppState &state, QWidget *parent = nullptr);

private:
    void render();

    AppState &m_state;
    Card *const m_card;
    Spinner *const m_spinner;
    TextLabel *const m_title;
    SelectableText *const m_failure;
    TextLabel *const m_progress;
    TextLabel *const m_explanation;
    EngineInstallView *const m_install;
    ProminentButton *const m_start;
    Button *const m_details;
};
