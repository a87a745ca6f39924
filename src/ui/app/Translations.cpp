#include "ui/app/Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>

using namespace Qt::StringLiterals;

namespace {

const QString ownFolder = u":/translations"_s;

bool install(QTranslator &translator, const QLocale &locale, const QString &catalogue, const QString &folder)
{
    return translator.load(locale, catalogue, u"_"_s, folder) &&
           QCoreApplication::installTranslator(&translator);
}

} // namespace

// What is installed later is asked first.
Translations::Translations(const QLocale &locale)
{
    install(m_systemWords, QLocale(QLocale::English), u"linux"_s, ownFolder);
    if (!install(m_program, locale, u"tarnwick"_s, ownFolder))
        return;
    install(m_programSystemWords, locale, u"linux"_s, ownFolder);
    install(m_qt, locale, u"qtbase"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath));
}
