// Puts the newest release of the engine in place, or takes a program that the user chose.
#pragma once

#include "core/engine/InstallStatus.h"
#include "core/engine/InstallerOptions.h"
#include "platform/async/Job.h"
#include "platform/async/Task.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <exception>
#include <optional>

class Desktop;

// Main thread. Destroying the installer stops a download that is under way; what cannot be interrupted runs
// to its end and cleans up.
class EngineInstaller final : public QObject
{
    Q_OBJECT

public:
    // Begins to remove what interrupted installations have left. Without a desktop nothing can be chosen.
    explicit EngineInstaller(const InstallerOptions &options, Desktop *desktop, QObject *parent = nullptr);
    ~EngineInstaller() override;

    // Present exactly while an installation runs.
    const std::optional<InstallStatus> &install() const { return m_install; }
    // The sentence about the last installation or choice that failed.
    const std::optional<QString> &installError() const { return m_installError; }
    // A program that the user chose is being run to see whether it does; the last one, where there are
    // several.
    bool isCheckingChoice() const { return m_checkingChoice; }
    // The running installation; stopping it once the download is complete has no effect.
    const Job &installTask() const { return m_installTask; }

    // Returns at once; does nothing while an installation runs.
    void startInstall();
    // Opens the panel and returns at once.
    void chooseManually();

Q_SIGNALS:
    void installChanged();
    void installErrorChanged();
    void choiceCheckChanged();
    // Before `install` becomes absent.
    void installed(const QString &program, const QString &version);
    void chosen(const QString &program, const QString &version);

private:
    static Task<> runInstall(QPointer<EngineInstaller> self, InstallerOptions options, StopToken stop);
    static Task<> choose(QPointer<EngineInstaller> self, Desktop *desktop);
    static Task<> checkChoice(QPointer<EngineInstaller> self, QString program);
    void removeLeftovers() const;
    void setInstall(const std::optional<InstallStatus> &status);
    void setCheckingChoice(bool checking);
    void setInstallError(const std::optional<QString> &message);

    const InstallerOptions m_options;
    Desktop *const m_desktop;
    std::optional<InstallStatus> m_install;
    std::optional<QString> m_installError;
    bool m_checkingChoice = false;
    int m_choices = 0; // how many there have been
    Job m_installTask;
};
