// The program against everything that means harm. Prints the longest pauses of its main thread, each with the
// case that caused it; exits with 0 when none was too long, nothing was lost and nothing hung.
//     hostile [--seed NUMBER] [--minutes NUMBER] [--pause MS] [--only PATTERN] [--without PATTERN]
#include "Campaign.h"
#include "platform/async/Launch.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QStandardPaths>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

const QString longestPause = QString::number(TARNWICK_LONGEST_PAUSE_MS);

} // namespace

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);

    QCommandLineParser parser;
    parser.addOption({u"seed"_s, u"Repeats the order of an earlier run."_s, u"number"_s});
    parser.addOption({u"minutes"_s, u"How long it goes on."_s, u"number"_s, u"10"_s});
    parser.addOption(
        {u"pause"_s, u"The longest pause, in milliseconds of processor time."_s, u"ms"_s, longestPause});
    parser.addOption({u"only"_s, u"The cases to go through, a regular expression."_s, u"pattern"_s});
    parser.addOption({u"without"_s, u"The cases to leave out, a regular expression."_s, u"pattern"_s});
    parser.addHelpOption();
    parser.process(application);

    const quint32 seed =
        parser.isSet(u"seed"_s) ? parser.value(u"seed"_s).toUInt() : QRandomGenerator::system()->generate();
    const std::chrono::duration<double, std::ratio<60>> minutes(parser.value(u"minutes"_s).toDouble());
    std::printf("seed %u\n", seed);
    Campaign campaign({.seed = seed,
                       .duration = std::chrono::duration_cast<std::chrono::milliseconds>(minutes),
                       .longestPause = std::chrono::milliseconds(parser.value(u"pause"_s).toInt()),
                       .only = QRegularExpression(parser.value(u"only"_s)),
                       .without = QRegularExpression(parser.value(u"without"_s))});
    launch([&] { return campaign.run(); });
    QApplication::exec();
    return campaign.succeeded() ? 0 : 1;
}
