// The settings window: where models are kept and how much room they take, the server's port, how the program
// starts and shows itself, and what it is.
#pragma once

#include "platform/async/Stop.h"
#include "platform/async/Task.h"

#include <QDialog>
#include <QPointer>

#include <optional>

class AppState;
class Button;
class Card;
class Desktop;
class LoginItem;
class QLineEdit;
class SelectableText;
class Switch;
class TextLabel;
class UserDefaults;

class SettingsView : public QDialog
{
    Q_OBJECT

public:
    // All four must outlive the window. It measures once, so each opening takes a new one.
    SettingsView(AppState &state, Desktop &desktop, UserDefaults &defaults, LoginItem &loginItem,
                 QWidget *parent = nullptr);
    ~SettingsView() override;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    Card *makeStorage(Desktop &desktop);
    Card *makeServer();
    Card *makeGeneral();
    Card *makeAbout();
    void render();

    void commitPort();
    void setLogin(bool on);
    static Task<> measure(QPointer<SettingsView> self, StopToken stop);

    AppState &m_state;
    UserDefaults &m_defaults;
    LoginItem &m_loginItem;
    TextLabel *const m_size;
    QLineEdit *const m_port;
    Button *const m_restart;
    Switch *const m_login;
    SelectableText *const m_loginFailure;
    Switch *const m_statusItem;

    bool m_launchAtLogin;
    std::optional<QString> m_loginError;
    std::optional<qint64> m_usedBytes;
    StopSource m_stop;
};
