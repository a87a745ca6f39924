#include "platform/files/RemoveTree.h"

#include <QByteArray>
#include <QFile>

#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct CloseFolder
{
    void operator()(DIR *folder) const { ::closedir(folder); }
};

// Whether `name` in `parent` is a real folder. If so, it can be read and emptied from now on.
bool unlockFolder(int parent, const char *name)
{
    struct stat facts = {};
    if (::fstatat(parent, name, &facts, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISDIR(facts.st_mode))
        return false;
    if ((facts.st_mode & S_IRWXU) != S_IRWXU)
        std::ignore = ::fchmodat(parent, name, S_IRWXU, 0); // opening the folder tells where that fails
    return true;
}

class OpenFolder
{
public:
    OpenFolder(int parent, const char *name)
    {
        const int descriptor = ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (descriptor < 0)
            return;
        m_folder.reset(::fdopendir(descriptor));
        if (!m_folder)
            ::close(descriptor);
    }

    explicit operator bool() const { return m_folder != nullptr; }
    int descriptor() const { return ::dirfd(m_folder.get()); }

    std::vector<std::string> names() const
    {
        std::vector<std::string> result;
        ::rewinddir(m_folder.get());
        while (const dirent *entry = ::readdir(m_folder.get())) {
            const std::string_view name = entry->d_name;
            if (name != "." && name != "..")
                result.emplace_back(name);
        }
        return result;
    }

private:
    std::unique_ptr<DIR, CloseFolder> m_folder;
};

// Empties a folder by moving what lies deeper up into it. A path or a chain of open folders would meet the
// system's limits in a tree that somebody made deep on purpose.
class Emptying
{
public:
    explicit Emptying(const OpenFolder &root) : m_root(root.descriptor()) {}

    void run(const OpenFolder &root)
    {
        do {
            m_progress = false;
            for (const std::string &name : root.names())
                remove(name.c_str());
        } while (m_progress);
    }

private:
    void remove(const char *name)
    {
        if (::unlinkat(m_root, name, 0) == 0 || ::unlinkat(m_root, name, AT_REMOVEDIR) == 0) {
            m_progress = true;
            return;
        }
        if (!unlockFolder(m_root, name))
            return;
        const OpenFolder folder(m_root, name);
        if (!folder)
            return;
        for (const std::string &child : folder.names())
            removeOrRaise(folder.descriptor(), child.c_str());
        if (::unlinkat(m_root, name, AT_REMOVEDIR) == 0)
            m_progress = true;
    }

    void removeOrRaise(int folder, const char *name)
    {
        if (::unlinkat(folder, name, 0) == 0 || ::unlinkat(folder, name, AT_REMOVEDIR) == 0 ||
            !unlockFolder(folder, name))
            return;
        const std::string raised = ".tarnwick-removed-" + std::to_string(++m_raised);
        if (::renameat(folder, name, m_root, raised.c_str()) == 0)
            m_progress = true;
    }

    const int m_root;
    int m_raised = 0;
    bool m_progress = false;
};

} // namespace

void removeTree(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    if (!unlockFolder(AT_FDCWD, name.constData())) {
        ::unlink(name.constData());
        return;
    }
    if (const OpenFolder root(AT_FDCWD, name.constData()); root)
        Emptying(root).run(root);
    ::rmdir(name.constData());
}
