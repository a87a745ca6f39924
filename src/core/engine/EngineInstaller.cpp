#include "core/engine/EngineInstaller.h"

#include "core/api/Friendly.h"
#include "core/engine/AppPaths.h"
#include "core/engine/InstallSteps.h"
#include "platform/async/Launch.h"
#include "platform/async/WorkerQueue.h"
#include "platform/desktop/Desktop.h"
#include "platform/error/CancellationError.h"
#include "platform/files/RemoveTree.h"

#include <QDir>
#include <QRegularExpression>
#include <QUuid>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

struct InstalledEngine
{
    QString program;
    QString version;
};

// How far an installation has come that may still fail.
struct Course
{
    QString workFolder;
    bool replaced = false; // the old engine is gone
};

Task<> removeInBackground(QString folder)
{
    const auto remove = [folder] { removeTree(folder); };
    co_await WorkerQueue::shared().run(remove);
}

Task<InstalledEngine> installNewest(std::shared_ptr<Course> course, InstallerOptions options,
                                    InstallReport report, StopToken stop)
{
    report(lookupStatus());
    makeWorkFolder(course->workFolder);
    const ReleaseAsset asset = co_await fetchAsset(options, report, stop);
    requireDiskSpace(asset.size);
    const QString archive = course->workFolder + u'/' + options.assetName;
    const QByteArray sha256 = co_await downloadArchive(asset, archive, options, report, stop);
    requireWhole(archive, sha256, asset);

    report({EngineInstaller::tr("Unpacking…"), {}, false});
    const QString unpacked = course->workFolder + "/unpacked"_L1;
    co_await unpackArchive(archive, unpacked, options);

    report({EngineInstaller::tr("Installing…"), {}, false});
    const auto put = [unpacked, course] { return putEngineInPlace(unpacked, course->replaced); };
    const QString program = co_await WorkerQueue::shared().run(put);

    report({EngineInstaller::tr("Checking that it runs…"), {}, false});
    const QString version = co_await verifyEngine(program);
    co_return InstalledEngine{program, version};
}

} // namespace

EngineInstaller::EngineInstaller(const InstallerOptions &options, Desktop *desktop, QObject *parent)
    : QObject(parent), m_options(options), m_desktop(desktop)
{
    removeLeftovers();
}

EngineInstaller::~EngineInstaller()
{
    m_installTask.requestStop();
}

// The names are collected at once, so that a folder made after this is not among them.
void EngineInstaller::removeLeftovers() const
{
    static const QRegularExpression ours(
        u"\\A[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}\\z"_s);
    const QDir folder(AppPaths::tempDir());
    const QStringList names = folder.entryList(QDir::Dirs | QDir::NoSymLinks).filter(ours);
    for (const QString &name : names)
        WorkerQueue::shared().post([path = folder.filePath(name)] { removeTree(path); });
}

void EngineInstaller::startInstall()
{
    if (m_install)
        return;
    const QPointer<EngineInstaller> self(this);
    m_installTask =
        Job([self, options = m_options](const StopToken &stop) { return runInstall(self, options, stop); });
}

Task<> EngineInstaller::runInstall(QPointer<EngineInstaller> self, InstallerOptions options, StopToken stop)
{
    self->setInstallError({});
    const InstallReport report = [self](const InstallStatus &status) {
        if (self)
            self->setInstall(status);
    };
    const auto course = std::make_shared<Course>();
    course->workFolder = AppPaths::tempDir() + u'/' + QUuid::createUuid().toString(QUuid::WithoutBraces);
    std::optional<InstalledEngine> engine;
    std::exception_ptr failure;
    bool cancelled = false;
    try {
        engine = co_await installNewest(course, options, report, stop);
    } catch (const CancellationError &) {
        cancelled = true;
    } catch (...) {
        failure = std::current_exception();
    }

    if (self && engine)
        Q_EMIT self->installed(engine->program, engine->version);
    if (self && cancelled)
        self->setInstallError(tr("Installation cancelled."));
    if (self && failure)
        self->setInstallError(Friendly::message(failure));
    // A check that quitting has cut short says nothing about the engine.
    if (failure && course->replaced && !quitToken().stopRequested())
        co_await removeInBackground(AppPaths::engineDir());
    co_await removeInBackground(course->workFolder);
    if (self)
        self->setInstall({});
}

void EngineInstaller::chooseManually()
{
    if (!m_desktop)
        return;
    const QPointer<EngineInstaller> self(this);
    launch([self, desktop = m_desktop] { return choose(self, desktop); });
}

Task<> EngineInstaller::choose(QPointer<EngineInstaller> self, Desktop *desktop)
{
    const std::optional<QString> program = co_await desktop->chooseFile(tr("Choose the ollama program"));
    if (program && self)
        co_await checkChoice(self, *program);
}

Task<> EngineInstaller::checkChoice(QPointer<EngineInstaller> self, QString program)
{
    const int choice = ++self->m_choices;
    self->setCheckingChoice(true);
    std::optional<QString> version;
    std::exception_ptr failure;
    try {
        version = co_await verifyEngine(program);
    } catch (...) {
        failure = std::current_exception();
    }
    if (!self)
        co_return;
    if (failure)
        self->setInstallError(Friendly::message(failure));
    else {
        Q_EMIT self->chosen(program, *version);
        self->setInstallError({});
    }
    if (choice == self->m_choices)
        self->setCheckingChoice(false);
}

void EngineInstaller::setInstall(const std::optional<InstallStatus> &status)
{
    if (m_install == status)
        return;
    m_install = status;
    Q_EMIT installChanged();
}

void EngineInstaller::setCheckingChoice(bool checking)
{
    if (m_checkingChoice == checking)
        return;
    m_checkingChoice = checking;
    Q_EMIT choiceCheckChanged();
}

void EngineInstaller::setInstallError(const std::optional<QString> &message)
{
    if (m_installError == message)
        return;
    m_installError = message;
    Q_EMIT installErrorChanged();
}
