// The one rule set that turns a failure into the sentence the user reads.
#pragma once

#include <QCoreApplication>
#include <QString>

#include <exception>

// Pure, total and callable from any thread.
class Friendly
{
    Q_DECLARE_TR_FUNCTIONS(Friendly)

public:
    // The sentence for a message, or the message unchanged when no rule knows it.
    static QString text(const QString &message);

    // The sentence for any exception. The description of a transport error no rule knows is left untouched.
    static QString message(const std::exception_ptr &error);
};
