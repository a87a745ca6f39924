// Says when the desktop's font or colours have become others. Qt tells that to the application and its
// windows; a widget whose font has a size of its own would not hear of it.
#pragma once

#include <QObject>

class AppearanceWatch : public QObject
{
    Q_OBJECT

public:
    // Lives as long as the application object.
    static AppearanceWatch &shared();

Q_SIGNALS:
    // QApplication::font() is the new one.
    void fontChanged();
    // QApplication::palette() is the new one.
    void paletteChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit AppearanceWatch(QObject *application);
};
