// A thin bar that says how far something is; while nobody knows it moves, or stays empty where motion is to
// be reduced.
#pragma once

#include <QProgressBar>

#include <optional>

class ProgressBar : public QProgressBar
{
    Q_OBJECT

public:
    // `name` is for screen readers.
    explicit ProgressBar(const QString &name, QWidget *parent = nullptr);

    // From 0 to 1; absent while nobody knows.
    void showFraction(std::optional<double> fraction);

private:
    void render();

    std::optional<double> m_fraction;
};
