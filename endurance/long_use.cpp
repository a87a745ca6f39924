// Hours of use in minutes. Prints what the process holds at the start, at every tenth and at the end; exits
// with 0 when nothing was lost, nothing leaked and nothing hung.
//     long_use [--scale PERCENT] [--seed NUMBER]
#include "LongUse.h"
#include "platform/async/Launch.h"

#include <QApplication>
#include <QCommandLineParser>

#include <cstdio>

using namespace Qt::StringLiterals;

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);

    QCommandLineParser parser;
    parser.addOption({u"scale"_s, u"How much of the whole plan, in percent."_s, u"percent"_s, u"100"_s});
    parser.addOption({u"seed"_s, u"Repeats the plan of an earlier run."_s, u"number"_s});
    parser.addHelpOption();
    parser.process(application);

    const int scale = parser.value(u"scale"_s).toInt();
    const quint32 seed =
        parser.isSet(u"seed"_s) ? parser.value(u"seed"_s).toUInt() : QRandomGenerator::system()->generate();
    const auto share = [scale](int whole) { return whole * scale / 100; };
    std::printf("seed %u, %d %% of the plan\n", seed, scale);
    LongUse use({share(10'000), share(2'000), share(500), share(200), seed});
    launch([&] { return use.run(); });
    QApplication::exec();
    return use.succeeded() ? 0 : 1;
}
