// A language in which every text is the English one between marks and half as long again, so that what was
// not translated can be told, and what has too little room shows.
#pragma once

#include <QCoreApplication>
#include <QTranslator>

class PseudoTranslator final : public QTranslator
{
public:
    PseudoTranslator() { QCoreApplication::installTranslator(this); }
    ~PseudoTranslator() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }

    QString translate(const char *context, const char *source, const char *, int) const override
    {
        // The names of keys.
        if (qstrcmp(context, "QShortcut") == 0)
            return {};
        const QString text = QString::fromUtf8(source);
        QString more;
        while (more.size() * 2 < text.size())
            more += QStringLiteral(" more");
        return QChar(0xab) + text + more + QChar(0xbb);
    }

    // What is left of a shown text when everything translated is taken out.
    static QString untranslated(const QString &shown)
    {
        QString rest;
        int depth = 0;
        for (const QChar character : shown) {
            if (character == QChar(0xab))
                ++depth;
            else if (character == QChar(0xbb))
                --depth;
            else if (depth == 0)
                rest += character;
        }
        return rest;
    }
};
