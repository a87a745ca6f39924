#include "core/engine/InstallSteps.h"

#include "core/engine/AppPaths.h"
#include "core/engine/FileDownloader.h"
#include "core/engine/RunProcess.h"
#include "core/engine/UnpackedTree.h"
#include "core/models/SpeedMeter.h"
#include "core/models/StallWatch.h"
#include "platform/async/WorkerQueue.h"
#include "platform/error/SimpleError.h"
#include "platform/error/SystemError.h"
#include "platform/files/ExchangePaths.h"
#include "platform/files/RemoveTree.h"
#include "platform/http/HttpClient.h"
#include "platform/text/ByteCount.h"
#include "platform/text/OutsideText.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <memory>

#include <paths.h>
#include <sys/stat.h>
#include <unistd.h>

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
    // It calls the decompressor by its name: not one that happens to come first on the user's own path.
    environment["PATH"] = _PATH_STDPATH;
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
    throw SimpleError(Sentences::tr("Unpacking failed: %1").arg(isolated(lastCharacters(reason, 200))));
}

// Of `folder`, or of the nearest parent that is there. Every other fault is that of whoever writes first.
void requireWritable(QString folder)
{
    while (!QFileInfo::exists(folder))
        folder = QFileInfo(folder).path();
    if (::access(QFile::encodeName(folder).constData(), W_OK) != 0 && (errno == EROFS || errno == EACCES))
        throw SimpleError(Sentences::tr("Ollama cannot be installed, since the folder %1 is read-only.")
                              .arg(isolated(folder)));
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
    const std::optional<QString> program = UnpackedTree::findProgram(folder);
    if (!program)
        throw SimpleError(Sentences::tr("The download did not contain the ollama program."));
    if (const auto objection = UnpackedTree::objection(folder))
        failUnpacking(*objection);
    makeAccessible(*program);
}

} // namespace

Task<ReleaseAsset> fetchAsset(InstallerOptions options, InstallReport report, StopToken stop)
{
    const auto tellOfStall = [report] { report(lookupStatus(true)); };
    const StallWatch watch(tellOfStall, options.stallPatience);
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

void makeWorkFolder(const QString &folder)
{
    for (const QString &parent : {AppPaths::applicationDir(), AppPaths::tempDir()})
        requireWritable(parent);
    // The archive comes from outside, and what it holds may be meant for nobody else's eyes yet.
    AppPaths::ensure(folder);
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
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

Task<QByteArray> downloadArchive(ReleaseAsset asset, QString archive, InstallerOptions options,
                                 InstallReport report, StopToken stop)
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
    co_return co_await downloader.download(request, stop);
}

void requireWhole(const QString &archive, const QByteArray &sha256, const ReleaseAsset &asset)
{
    struct stat facts = {};
    if (::stat(QFile::encodeName(archive).constData(), &facts) != 0)
        throw SystemError(errno);
    const qint64 size = facts.st_size;
    if (size == 0 || (asset.size >= 1 && size != asset.size))
        throw SimpleError(Sentences::tr("The download is incomplete (%1 of %2). Please try again.")
                              .arg(byteCountText(size), byteCountText(asset.size)));
    if (!asset.sha256.isEmpty() && sha256 != asset.sha256)
        throw SimpleError(
            Sentences::tr("The download does not match its published checksum. Please try again."));
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
        const QString words = result.output.trimmed();
        failUnpacking(words.isEmpty()
                          ? Sentences::tr("the archive tool ended with status %1.").arg(result.status)
                          : words);
    }
    const auto look = [folder] { inspect(folder); };
    co_await WorkerQueue::shared().run(look);
}

QString putEngineInPlace(const QString &unpacked, bool &replaced)
{
    const QString engine = AppPaths::engineDir();
    AppPaths::ensure(AppPaths::applicationDir());
    // For whoever is killed meanwhile. The old engine goes with the folder that it comes into.
    if (!exchangePaths(unpacked, engine)) {
        const QString old = QFileInfo(unpacked).path() + "/replaced"_L1;
        if (std::rename(QFile::encodeName(engine).constData(), QFile::encodeName(old).constData()) != 0)
            removeTree(engine);
        replaced = true;
        if (std::rename(QFile::encodeName(unpacked).constData(), QFile::encodeName(engine).constData()) != 0)
            throw SystemError(errno);
    }
    replaced = true;
    const std::optional<QString> program = UnpackedTree::findProgram(engine);
    if (!program)
        throw SimpleError(Sentences::tr("The installed engine could not be found."));
    return *program;
}

Task<QString> verifyEngine(QString program)
{
    const QStringList arguments{u"--version"_s};
    const std::optional<Environment> inherited;
    const ProcessResult result = co_await runProcess(program, arguments, inherited, keptOutput);
    const QString output = result.output.trimmed();
    if (result.status != 0 || output.isEmpty())
        throw SimpleError(Sentences::tr("The program was found but does not run (%1).")
                              .arg(isolated(lastCharacters(output, 150))));
    co_return output;
}
