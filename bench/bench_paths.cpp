// Measures a tree of 100,000 files with AppPaths::directorySize and, in turns with it, with du.
#include "Figures.h"
#include "core/engine/AppPaths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

constexpr int folders = 500;
constexpr int filesEach = 200;
constexpr int rounds = 11;

// Two levels deep, as a models folder or an unpacked engine might be. Returns the sum of the files' lengths.
qint64 makeTree(const QString &root)
{
    qint64 total = 0;
    for (int i = 0; i < folders; ++i) {
        const QString folder = root + u"/group-%1/folder-%2"_s.arg(i % 20).arg(i);
        QDir().mkpath(folder);
        for (int j = 0; j < filesEach; ++j) {
            QFile file(folder + u"/sha256-%1-%2"_s.arg(i).arg(j));
            const qint64 size = (i * 7919 + j * 104'729) % 1'000'003;
            if (!file.open(QIODevice::WriteOnly) || !file.resize(size))
                qFatal("The tree cannot be made");
            total += size;
        }
    }
    return total;
}

qint64 askDu(const QString &root)
{
    QProcess du;
#ifdef Q_OS_LINUX
    du.start(u"du"_s, {u"-sb"_s, u"--apparent-size"_s, root});
#else
    du.start(u"du"_s, {u"-sA"_s, root});
#endif
    if (!du.waitForFinished(-1) || du.exitCode() != 0)
        qFatal("du did not run");
    return du.readAll().split('\t').first().toLongLong();
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    const qint64 total = makeTree(folder.path());

    Figure ours;
    Figure du;
    for (int round = -1; round < rounds; ++round) {
        Figure warmUp;
        const qint64 measured =
            (round < 0 ? warmUp : ours).measure([&folder] { return AppPaths::directorySize(folder.path()); });
        const qint64 told = (round < 0 ? warmUp : du).measure([&folder] { return askDu(folder.path()); });
        if (measured != total || told <= 0)
            qFatal("The tree was measured wrongly");
    }

    std::printf("paths: %d files, %d rounds\n", folders * filesEach, rounds);
    std::printf("paths: directorySize  %7.1f ms wall, %7.1f ms CPU\n", median(ours.wall), median(ours.cpu));
    std::printf("paths: du             %7.1f ms wall, %7.1f ms CPU\n", median(du.wall), median(du.cpu));
    std::printf("paths: directorySize / du  %.2f wall, %.2f CPU (promised: at most 1.30)\n",
                median(ours.wall) / median(du.wall), median(ours.cpu) / median(du.cpu));
    return 0;
}
