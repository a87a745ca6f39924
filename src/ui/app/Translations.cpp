#include "ui/app/Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>

using namespace Qt::StringLiterals;

Translations::Translations(const QLocale &locale)
{
    if (!m_program.load(locale, u"tarnwick"_s, u"_"_s, u":/translations"_s))
        return;
    QCoreApplication::installTranslator(&m_program);
    if (m_qt.load(locale, u"qtbase"_s, u"_"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&m_qt);
}
