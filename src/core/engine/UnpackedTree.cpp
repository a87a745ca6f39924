#include "core/engine/UnpackedTree.h"

#include "core/engine/AppPaths.h"
#include "platform/error/SystemError.h"
#include "platform/text/OutsideText.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <list>
#include <system_error>

namespace fs = std::filesystem;

namespace {

// Follows a link the way the system does, one component after the other, but never out of `root` and also
// where nothing exists yet. Weighing the texts of the links would not do: with "here" leading to ".", the
// target "here/../x" leaves the folder.
bool staysInside(const fs::path &root, const fs::path &link)
{
    constexpr int mostLinks = 40; // as the system has it
    fs::path at = link.parent_path();
    std::list<fs::path> ahead{link.filename()};
    for (int links = 0; !ahead.empty();) {
        const fs::path component = ahead.front();
        ahead.pop_front();
        if (component.empty() || component == ".")
            continue;
        if (component == "..") {
            if (at.empty())
                return false;
            at = at.parent_path();
            continue;
        }
        std::error_code error;
        const fs::path target = fs::read_symlink(root / at / component, error);
        if (error) {
            at /= component;
            continue;
        }
        if (target.is_absolute() || ++links > mostLinks)
            return false;
        ahead.insert(ahead.begin(), target.begin(), target.end());
    }
    return true;
}

QString phrase(const char *text, const fs::path &name)
{
    return QCoreApplication::translate("UnpackedTree", text)
        .arg(isolated(QString::fromStdString(name.string())));
}

std::optional<QString> objectionTo(const fs::directory_entry &entry, const fs::path &root)
{
    std::error_code error;
    const fs::file_type type = entry.symlink_status(error).type();
    const fs::path name = entry.path().lexically_relative(root);
    switch (type) {
    case fs::file_type::regular:
    case fs::file_type::directory:
        return std::nullopt;
    case fs::file_type::symlink:
        if (staysInside(root, name))
            return std::nullopt;
        return phrase(QT_TRANSLATE_NOOP("UnpackedTree", "a link leads out of the archive: %1"), name);
    default:
        return phrase(QT_TRANSLATE_NOOP("UnpackedTree", "not a file, folder or link: %1"), name);
    }
}

} // namespace

std::optional<QString> UnpackedTree::findProgram(const QString &root)
{
    const std::optional<QString> found = AppPaths::findBinary(root);
    if (!found)
        return std::nullopt;
    const QFileInfo real(QFileInfo(*found).canonicalFilePath());
    const QString inside = QFileInfo(root).canonicalFilePath() + u'/';
    if (!real.isFile() || !real.filePath().startsWith(inside))
        return std::nullopt;
    return found;
}

std::optional<QString> UnpackedTree::objection(const QString &root)
{
    const fs::path folder(QFile::encodeName(root).toStdString());
    std::error_code error;
    fs::recursive_directory_iterator entries(folder, error);
    while (!error && entries != fs::recursive_directory_iterator()) {
        if (const auto found = objectionTo(*entries, folder))
            return found;
        entries.increment(error);
    }
    if (error)
        return SystemError::text(error.value());
    return std::nullopt;
}
