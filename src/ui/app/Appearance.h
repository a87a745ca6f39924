// Gives all windows the colours that the user wishes for, and takes up every change of the wishes and of the
// desktop's theme while the program runs.
#pragma once

#include <QObject>

class AppearanceSource;

class Appearance : public QObject
{
    Q_OBJECT

public:
    // Before the first window, so that it opens in its colours. `source` must outlive this.
    explicit Appearance(const AppearanceSource &source);

private:
    void apply();

    const AppearanceSource &m_source;
    bool m_applying = false;
};
