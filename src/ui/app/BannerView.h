// The one message atop the window, with the button that dismisses it; takes no room while there is none.
#pragma once

#include <QWidget>

class Announcer;
class AppState;
class SelectableText;

class BannerView : public QWidget
{
    Q_OBJECT

public:
    explicit BannerView(AppState &state, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void render();

    AppState &m_state;
    QWidget *const m_row;
    SelectableText *const m_message;
    Announcer *const m_announcer;
};
