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
    // The sentence for a message; for some of the engine's, one that says what to do with the message behind
    // it; the message unchanged when no rule knows it. The sentence of a sentence is itself.
    static QString text(const QString &message);

    // What stands for the engine's message where an HTTP status of 400 or more came without one.
    static QString withoutReason(int status);

    // The sentence for any exception. The description of a transport error no rule knows is left untouched.
    static QString message(const std::exception_ptr &error);
};
