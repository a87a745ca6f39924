// The steps of an installation, each for itself. What waits runs on the main thread and leaves the disk to
// background threads. A failure is thrown: a SimpleError with its sentence, or the error of whoever failed.
#pragma once

#include "core/engine/InstallStatus.h"
#include "core/engine/InstallerOptions.h"
#include "core/engine/ReleaseRecord.h"
#include "platform/async/Stop.h"
#include "platform/async/Task.h"

#include <QString>

#include <functional>

using InstallReport = std::function<void(const InstallStatus &)>;

// The file to install, out of the record of the latest release.
Task<ReleaseAsset> fetchAsset(InstallerOptions options, InstallReport report, StopToken stop);

// Throws when the volume is known to have less room than an archive of `assetSize` bytes needs.
void requireDiskSpace(qint64 assetSize);

// Reports every piece of `asset` that arrives, and when none do any more.
Task<> downloadArchive(ReleaseAsset asset, QString archive, InstallerOptions options, InstallReport report,
                       StopToken stop);

// Throws when `archive` is empty or not as long as its release says. Blocks; any thread.
void requireWhole(const QString &archive, qint64 assetSize);

// Fills `folder`, which is made. On return it holds the engine program, and nothing that leads out of it.
Task<> unpackArchive(QString archive, QString folder, InstallerOptions options);

// Moves `unpacked` to where the installed engine belongs, in place of what is there, and returns the engine
// program. `replaced` is set just before the move, when the old engine is gone. Blocks; any thread.
QString putEngineInPlace(const QString &unpacked, bool &replaced);

// Runs `program` once; its version text.
Task<QString> verifyEngine(QString program);
