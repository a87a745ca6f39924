// An icon by itself, in a tint.
#pragma once

#include "ui/widgets/Graphic.h"
#include "ui/widgets/TextStyle.h"
#include "ui/widgets/Tint.h"

#include <QString>

class SymbolLabel : public Graphic
{
    Q_OBJECT

public:
    // A square of `size` device-independent pixels. `name` is for screen readers; empty for a mere ornament.
    SymbolLabel(const QString &symbol, int size, Tint tint, const QString &name = {},
                QWidget *parent = nullptr);

    // As high as a line of `style`, whatever the desktop's font is.
    SymbolLabel(const QString &symbol, TextStyle style, Tint tint, const QString &name = {},
                QWidget *parent = nullptr);

    void setSymbol(const QString &symbol, Tint tint);

    QSize sizeHint() const override { return {m_size, m_size}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_symbol;
    int m_size;
    Tint m_tint;
};
