// One conversation: its header, its messages and the field in which the next one is written. Made afresh for
// each conversation that is selected.
#pragma once

#include <QUuid>
#include <QWidget>

class Announcer;
class AppState;
class Desktop;
class MessageInput;
class ProminentButton;
class QShortcut;
class TextZoom;
class Transcript;

class ChatPane : public QWidget
{
    Q_OBJECT

public:
    // All three must outlive the pane.
    ChatPane(AppState &state, Desktop &desktop, TextZoom &zoom, const QUuid &id, QWidget *parent = nullptr);

    const QUuid &id() const { return m_id; }
    void focusInput();
    // What is being written.
    QString draft() const;
    void setDraft(const QString &draft);

private:
    void render();
    bool isGenerating() const;
    QWidget *makeInputRow();
    void send();
    void edit();
    void refuse(const QString &reason);
    void scaleText();

    AppState &m_state;
    TextZoom &m_zoom;
    const QUuid m_id;
    Transcript *const m_transcript;
    MessageInput *const m_input;
    ProminentButton *const m_send;
    ProminentButton *const m_stop;
    QShortcut *const m_escape;
    Announcer *const m_announcer;
    bool m_wasGenerating = false;
};
