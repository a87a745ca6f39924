// A two-state switch with its label. Keyboard and screen readers meet a check box.
#pragma once

#include <QCheckBox>

class Switch : public QCheckBox
{
    Q_OBJECT

public:
    explicit Switch(const QString &text, QWidget *parent = nullptr);

    // Says nothing; clicked() is the user's doing alone, a screen reader's toggling included.
    void setChecked(bool on);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint &position) const override;
    void nextCheckState() override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool m_expected = false; // the change under way is a click or the program's
};
