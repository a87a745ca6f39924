#include "ui/app/Appearance.h"

#include "platform/appearance/AppearanceSource.h"
#include "ui/widgets/AppearanceWatch.h"
#include "ui/widgets/FieldStyle.h"
#include "ui/widgets/Palettes.h"

#include <QApplication>
#include <QScopedValueRollback>

Appearance::Appearance(const AppearanceSource &source) : m_source(source)
{
    FieldStyle::install();
    connect(&source, &AppearanceSource::wishesChanged, this, &Appearance::apply);
    connect(&AppearanceWatch::shared(), &AppearanceWatch::paletteChanged, this, &Appearance::apply);
    apply();
}

void Appearance::apply()
{
    if (m_applying)
        return;
    const QScopedValueRollback applying(m_applying, true);
    // What lies below a palette of ours cannot be asked for. Nothing is painted before this function returns.
    QApplication::setPalette(QPalette());
    const QPalette theme = QApplication::palette();
    const ThemeRole role = FieldStyle::isInstalled() ? ThemeRole::proposes : ThemeRole::decides;
    const QPalette palette = paletteFor(m_source.wishes(), theme, role);
    if (palette != theme)
        QApplication::setPalette(palette);
    AppearanceWatch::shared().setMotionReduced(m_source.wishes().lessMotion);
}
