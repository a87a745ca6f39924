// The base of every failure the program throws: it carries a localised description, a sentence or a phrase
// that can be shown to the user.
#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

class Error : public std::exception
{
public:
    explicit Error(const QString &description);

    const QString &description() const { return m_description; }
    const char *what() const noexcept override { return m_utf8.constData(); }

private:
    QString m_description;
    QByteArray m_utf8;
};

// The description of any exception: that of an Error as it is, what() of every other.
QString errorDescription(const std::exception_ptr &error);
