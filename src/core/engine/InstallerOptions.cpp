#include "core/engine/InstallerOptions.h"

#include <QCoreApplication>
#include <QSysInfo>

using namespace Qt::StringLiterals;

#ifdef Q_OS_MACOS

QString InstallerOptions::standardAssetName()
{
    return u"ollama-darwin.tgz"_s;
}

QString InstallerOptions::standardMissingAsset()
{
    return QCoreApplication::translate("EngineInstaller",
                                       "The macOS download (ollama-darwin.tgz) was not found in the latest "
                                       "Ollama release. You can choose Ollama manually.");
}

QStringList InstallerOptions::standardUnpackSwitches()
{
    return {u"-xzf"_s};
}

#else

QString InstallerOptions::standardAssetName()
{
    const QString processor = QSysInfo::currentCpuArchitecture();
    const QString released = processor == "x86_64"_L1 ? u"amd64"_s : processor;
    return u"ollama-linux-%1.tar.zst"_s.arg(released);
}

QString InstallerOptions::standardMissingAsset()
{
    return QCoreApplication::translate("EngineInstaller",
                                       "The Linux download (%1) was not found in the latest Ollama release. "
                                       "You can choose Ollama manually.")
        .arg(standardAssetName());
}

QStringList InstallerOptions::standardUnpackSwitches()
{
    return {u"--zstd"_s, u"-xf"_s};
}

#endif
