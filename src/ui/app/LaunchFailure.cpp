#include "ui/app/LaunchFailure.h"

#include "platform/error/SystemError.h"
#include "platform/instance/TerminationSignals.h"

#include <QCoreApplication>
#include <QMessageBox>

#include <cstdio>
#include <cstdlib>

namespace {

QString unanswered(qint64 process)
{
    if (process == 0)
        return QCoreApplication::translate("LaunchFailure",
                                           "Tarnwick is running already, but does not answer. Wait a moment "
                                           "and start it again, or end the program that runs.");
    return QCoreApplication::translate("LaunchFailure",
                                       "Tarnwick is running already, but does not answer. Wait a moment and "
                                       "start it again, or end the program that runs: process %1.")
        .arg(process);
}

} // namespace

QString LaunchFailure::noHome()
{
    return QCoreApplication::translate(
        "LaunchFailure", "Tarnwick finds no folder for its data: neither HOME nor XDG_DATA_HOME names one.");
}

QString LaunchFailure::sentence(const SingleInstance::Claim &claim)
{
    using Outcome = SingleInstance::Claim::Outcome;
    if (claim.outcome == Outcome::blocked)
        return QCoreApplication::translate(
                   "LaunchFailure", "Tarnwick cannot use \"%1\", which is not an ordinary file of yours. "
                                    "Move it away and start again.")
            .arg(claim.path);
    if (claim.outcome == Outcome::noFolder)
        return QCoreApplication::translate("LaunchFailure", "Tarnwick cannot keep its data in \"%1\": %2.")
            .arg(claim.path, SystemError::text(claim.error));
    return unanswered(claim.process);
}

int LaunchFailure::show(const QString &sentence)
{
    const TerminationSignals termination;
    std::fprintf(stderr, "%s\n", qUtf8Printable(sentence));
    QMessageBox box(QMessageBox::Critical, QCoreApplication::applicationName(), sentence);
    box.setTextFormat(Qt::PlainText);
    QObject::connect(&termination, &TerminationSignals::terminationRequested, &box, &QDialog::reject);
    QObject::connect(&box, &QDialog::finished, &box, [] { QCoreApplication::exit(EXIT_FAILURE); });
    box.show();
    return QCoreApplication::exec();
}
