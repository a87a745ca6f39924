// The steps of an installation, each for itself. What waits runs on the main thread and leaves the disk to
// background threads. A failure is thrown: a SimpleError with its sentence, or the error of whoever failed.
#pragma once

#include "core/engine/InstallStatus.h"
#include "core/engine/InstallerOptions.h"
#include "core/engine/ReleaseRecord.h"
#include "platform/async/Stop.h"
#include "platform/async/Task.h"

#include <QByteArray>
#include <QString>

#include <functional>

using InstallReport = std::function<void(const InstallStatus &)>;

// The file to install, out of the record of the latest release. Reports when no answer comes.
Task<ReleaseAsset> fetchAsset(InstallerOptions options, InstallReport report, StopToken stop);

// Makes `folder`, closed to other users. Throws when the folders it is to lie in are known to be read-only.
void makeWorkFolder(const QString &folder);

// Throws when the volume is known to have less room than an archive of `assetSize` bytes needs.
void requireDiskSpace(qint64 assetSize);

// Reports every piece of `asset` that arrives, and when none do any more. Returns the SHA-256 of them all.
Task<QByteArray> downloadArchive(ReleaseAsset asset, QString archive, InstallerOptions options,
                                 InstallReport report, StopToken stop);

// Throws when `archive` is empty, or not as long as its release says, or when its `sha256` is another.
// Blocks; any thread.
void requireWhole(const QString &archive, const QByteArray &sha256, const ReleaseAsset &asset);

// Fills `folder`, which is made. On return it holds the engine program, which anybody may run, and nothing
// that leads out of it.
Task<> unpackArchive(QString archive, QString folder, InstallerOptions options);

// Moves `unpacked` to where the installed engine belongs, in place of what is there (which takes the place of
// `unpacked` where the system can exchange the two in one step), and returns the engine program. `replaced`
// is set when the old engine is not in its place any more. Blocks; any thread.
QString putEngineInPlace(const QString &unpacked, bool &replaced);

// Runs `program` once; its version text.
Task<QString> verifyEngine(QString program);
