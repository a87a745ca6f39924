// How large the text of conversations is, as the user last chose it with the keys, the menu or the wheel.
#pragma once

#include <QObject>

class QWheelEvent;
class UserDefaults;

class TextZoom : public QObject
{
    Q_OBJECT

public:
    // What one sets, the others on the same `defaults` follow; it is to outlive this.
    explicit TextZoom(UserDefaults &defaults, QObject *parent = nullptr);

    // As a factor of the usual size, from 0.7 to 3.
    double factor() const { return percent() / 100.0; }
    bool isLargest() const;
    bool isSmallest() const;

    void grow() { step(1); }
    void shrink() { step(-1); }
    void reset();

    // From now on the wheel over `viewport` zooms while Ctrl is held.
    void followWheel(QWidget *viewport);

Q_SIGNALS:
    void changed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    int percent() const;
    void step(int direction);
    void turn(const QWheelEvent &wheel);

    UserDefaults &m_defaults;
    int m_turned = 0; // of the wheel, in eighths of a degree, since the last step
};
