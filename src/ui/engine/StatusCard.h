// The card that says whether the server runs, starts and stops it, and shows why it does not.
#pragma once

#include "ui/widgets/Card.h"

class AppState;
class Button;
class Desktop;
class ProminentButton;
class SelectableText;
class StatusDot;
class TextLabel;

class StatusCard : public Card
{
    Q_OBJECT

public:
    StatusCard(AppState &state, Desktop &desktop, QWidget *parent = nullptr);

private:
    void render();
    void fillAddress(Desktop &desktop);

    AppState &m_state;
    StatusDot *const m_dot;
    TextLabel *const m_status;
    TextLabel *const m_remark;
    ProminentButton *const m_start;
    Button *const m_stop;
    SelectableText *const m_failure;
    Button *const m_otherPort;
    TextLabel *const m_address;
    QWidget *const m_running;
};
