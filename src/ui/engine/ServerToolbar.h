// The strip in the window's toolbar that shows on every tab how the server does, switches it and copies its
// address.
#pragma once

#include <QWidget>

class AppState;
class Desktop;
class ElidedLabel;
class StatusDot;
class Switch;

class ServerToolbar : public QWidget
{
    Q_OBJECT

public:
    ServerToolbar(AppState &state, Desktop &desktop, QWidget *parent = nullptr);

private:
    void render();

    AppState &m_state;
    StatusDot *const m_dot;
    Switch *const m_switch;
    ElidedLabel *const m_address;
};
