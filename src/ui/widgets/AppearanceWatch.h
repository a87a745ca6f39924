// Says when the desktop's font, colours or wish for calm have become others. Qt tells the first two to the
// application and its windows; a widget whose font has a size of its own would not hear of it.
#pragma once

#include <QObject>

class AppearanceWatch : public QObject
{
    Q_OBJECT

public:
    // Lives as long as the application object.
    static AppearanceWatch &shared();

    // Whether what moves only to be noticed stands still instead.
    bool isMotionReduced() const { return m_motionReduced; }
    void setMotionReduced(bool reduced);

Q_SIGNALS:
    // QApplication::font() is the new one.
    void fontChanged();
    // QApplication::palette() is the new one.
    void paletteChanged();
    void motionChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit AppearanceWatch(QObject *application);

    bool m_motionReduced = false;
};
