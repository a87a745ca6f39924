#include "core/engine/InstallSteps.h"

#include "core/engine/AppPaths.h"
#include "core/engine/FileDownloader.h"
#include "core/engine/RunProcess.h"
#include "core/engine/UnpackedTree.h"
#include "core/models/Fmt.h"
#include "core/models/SpeedMeter.h"
#include "core/models/StallWatch.h"
#include "platform/async/WorkerQueue.h"
#include "platform/error/SimpleError.h"
#include "platform/error/SystemError.h"
#include "platform/files/RemoveTree.h"
#include "platform/http/HttpClient.h"
#include "platform/text/ByteCount.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <memory>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

struct Sentences
{
    Q_DECLARE_TR_FUNCTIONS(EngineInstaller)
};

// Of what a program prints; only its end is shown.
constexpr qint64 keptOutput = 1024 * 1024;

// Far above any record there has been. What is cut here is no JSON any more and fails as such.
constexpr qint64 longestRecord = 64LL * 1024 * 1024;

void requireRecord(int status)
{
    if (status == 403 || status == 429)
        throw SimpleError(Sentences::tr("GitHub is limiting requests right now. Try again in a few minutes, "
                                        "or choose Ollama manually."));
    if (status >= 400)
        throw SimpleError(Sentences::tr("GitHub answered with error %1. Try again later, or choose Ollama "
                                        "manually.")
                              .arg(status));
}

Environment unpackingEnvironment()
{
    Environment environment = systemEnvironment();
    // Its words are to be recognised.
    environment["LC_ALL"] = "C";
    // A superuser's GNU tar would give the files the owners and the set-user-ID marks of the archive. Here
    // rather than among the arguments, since whatever the user has put into this variable must not count.
    environment["TAR_OPTIONS"] = "--no-same-owner --no-same-permissions";
    return environment;
}

// A tool that could write a part of a block says so, but not why it was not the whole.
bool diskIsFull(const QString &folder)
{
    constexpr qint64 toolsBlock = 10'240;
    const std::optional<qint64> free = AppPaths::freeBytes(folder);
    return free && *free < toolsBlock;
}

QString lastCharacters(const QString &text, qsizetype count)
{
    const QList<uint> characters = text.toUcs4();
    const QList<uint> last = characters.last(std::min(count, characters.size()));
    return QString::fromUcs4(reinterpret_cast<const char32_t *>(last.constData()), last.size());
}

// The line of a running download.
class DownloadLine
{
public:
    DownloadLine(qint64 assetSize, const InstallReport &report, std::chrono::milliseconds patience)
        : m_assetSize(assetSize), m_report(report), m_watch([this] { show(); }, patience)
    {
    }

    void update(qint64 received, qint64 expected)
    {
        m_received = received;
        m_expected = expected;
        m_meter.update(received);
        m_watch.update(received);
        show();
    }

private:
    void show() const
    {
        m_report(downloadStatus(m_received, m_expected, m_assetSize, m_meter.speed(), m_watch.stalled()));
    }

    const qint64 m_assetSize;
    const InstallReport m_report;
    qint64 m_received = 0;
    qint64 m_expected = -1;
    SpeedMeter m_meter;
    StallWatch m_watch;
};

[[noreturn]] void failUnpacking(const QString &reason)
{
    throw SimpleError(Sentences::tr("Unpacking failed: %1").arg(lastCharacters(reason, 200)));
}

void makeAccessible(const QString &path)
{
    constexpr mode_t toAll = 0755;
    if (::chmod(QFile::encodeName(path).constData(), toAll) != 0)
        throw SystemError(errno);
}

// The archive may have had a say in the folder's own permissions.
void inspect(const QString &folder)
{
    makeAccessible(folder);
    if (!UnpackedTree::findProgram(folder))
        throw SimpleError(Sentences::tr("The download did not contain the ollama program."));
    if (const auto objection = UnpackedTree::objection(folder))
        failUnpacking(*objection);
}

} // namespace

Task<ReleaseAsset> fetchAsset(InstallerOptions options, InstallReport report, StopToken stop)
{
    const QString line = Sentences::tr("Looking up the latest Ollama…");
    report({line});
    const auto wait = [line, report] { report({line + u" \u00B7 "_s + Fmt::waiting()}); };
    const StallWatch watch(wait, options.stallPatience);
    HttpRequest request;
    request.url = options.releaseService;
    request.url.setPath(u"/repos/ollama/ollama/releases/latest"_s);
    request.headers = {{"User-Agent", "Tarnwick"}, {"Accept", "application/vnd.github+json"}};
    request.idleTimeout = options.lookupTimeout;
    request.secureOnly = true;
    const HttpAnswer answer = co_await HttpClient::shared().send(request, stop, longestRecord);
    requireRecord(answer.head.status);
    const auto read = [name = options.assetName, body = answer.body] { return assetNamed(name, body); };
    const std::optional<ReleaseAsset> asset = co_await WorkerQueue::shared().run(read);
    if (!asset)
        throw SimpleError(options.missingAsset);
    co_return *asset;
}

void requireDiskSpace(qint64 assetSize)
{
    const std::optional<qint64> free = AppPaths::freeBytes(QFileInfo(AppPaths::applicationDir()).path());
    if (!free || assetSize < 1)
        return;
    qint64 need = 0;
    if (qMulOverflow<qint64>(3, assetSize, &need))
        need = std::numeric_limits<qint64>::max();
    if (*free < need)
        throw SimpleError(Sentences::tr("Not enough free disk space to install Ollama (needs about %1).")
                              .arg(byteCountText(need)));
}

Task<> downloadArchive(ReleaseAsset asset, QString archive, InstallerOptions options, InstallReport report,
                       StopToken stop)
{
    FileDownloader downloader(archive);
    const auto line = std::make_shared<DownloadLine>(asset.size, report, options.stallPatience);
    downloader.onProgress = [line](qint64 received, qint64 expected) { line->update(received, expected); };
    report({Sentences::tr("Starting download…")});
    HttpRequest request;
    request.url = asset.url;
    request.headers = {{"User-Agent", "Tarnwick"}};
    request.idleTimeout = options.downloadTimeout;
    request.secureOnly = true;
    co_await downloader.download(request, stop);
}

void requireWhole(const QString &archive, qint64 assetSize)
{
    struct stat facts = {};
    if (::stat(QFile::encodeName(archive).constData(), &facts) != 0)
        throw SystemError(errno);
    const qint64 size = facts.st_size;
    if (size == 0 || (assetSize >= 1 && size != assetSize))
        throw SimpleError(Sentences::tr("The download is incomplete (%1 of %2). Please try again.")
                              .arg(byteCountText(size), byteCountText(assetSize)));
}

Task<> unpackArchive(QString archive, QString folder, InstallerOptions options)
{
    AppPaths::ensure(folder);
    const QStringList arguments = options.unpackSwitches + QStringList{archive, u"-C"_s, folder};
    const std::optional<Environment> environment = unpackingEnvironment();
    const ProcessResult result = co_await runProcess(options.archiveTool, arguments, environment, keptOutput);
    if (result.status != 0) {
        if (diskIsFull(folder))
            throw SystemError(ENOSPC);
        failUnpacking(result.output);
    }
    const auto look = [folder] { inspect(folder); };
    co_await WorkerQueue::shared().run(look);
}

QString putEngineInPlace(const QString &unpacked, bool &replaced)
{
    const QString engine = AppPaths::engineDir();
    AppPaths::ensure(AppPaths::applicationDir());
    // Out of the way in one step, for whoever is killed meanwhile; it goes with the folder it comes into.
    const QString old = QFileInfo(unpacked).path() + "/replaced"_L1;
    if (std::rename(QFile::encodeName(engine).constData(), QFile::encodeName(old).constData()) != 0)
        removeTree(engine);
    replaced = true;
    if (std::rename(QFile::encodeName(unpacked).constData(), QFile::encodeName(engine).constData()) != 0)
        throw SystemError(errno);
    const std::optional<QString> program = UnpackedTree::findProgram(engine);
    if (!program)
        throw SimpleError(Sentences::tr("The installed engine could not be found."));
    makeAccessible(*program);
    return *program;
}

Task<QString> verifyEngine(QString program)
{
    const QStringList arguments{u"--version"_s};
    const std::optional<Environment> inherited;
    const ProcessResult result = co_await runProcess(program, arguments, inherited, keptOutput);
    const QString output = result.output.trimmed();
    if (result.status != 0 || output.isEmpty())
        throw SimpleError(
            Sentences::tr("The program was found but does not run (%1).").arg(lastCharacters(output, 150)));
    co_return output;
}
