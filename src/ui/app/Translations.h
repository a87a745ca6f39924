// The program's texts, and Qt's own, in the language of the desktop and with the words of its system.
#pragma once

#include <QLocale>
#include <QTranslator>

class Translations
{
public:
    // Installs what there is for `locale`, for as long as this lives. Where the program speaks no language of
    // the locale, Qt's texts stay English too: a dialog in two languages helps nobody.
    explicit Translations(const QLocale &locale = QLocale());

private:
    QTranslator m_systemWords; // in English
    QTranslator m_program;
    QTranslator m_programSystemWords;
    QTranslator m_qt;
};
