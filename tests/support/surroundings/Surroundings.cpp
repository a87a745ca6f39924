// What every test program finds around it, whoever starts it and wherever: folders of its own, no bus and no
// display but the ones it makes itself, and one locale, time zone, umask and set of fonts. An object in each
// of them, at work before main(); what a test starts inherits it all.
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

extern char **environ; // NOLINT(readability-redundant-declaration): not every system's header has it

namespace {

// The folder of the test program that this one belongs to.
constexpr auto mark = "TARNWICK_TEST_FOLDER";

// What the programs of this project, Qt and its helpers go by. Where Qt's plugins are is the machine's.
constexpr std::array<std::string_view, 5> forgotten{"LC_", "XDG_", "QT_", "OLLAMA_", "DEMO_ENGINE_"};
constexpr std::array<std::string_view, 3> kept{"QT_PLUGIN_PATH", "QT_LOGGING_", "QT_DEBUG_"};
constexpr std::array named{"LANGUAGE",  "TAR_OPTIONS", "http_proxy",     "https_proxy",
                           "all_proxy", "no_proxy",    "HTTP_PROXY",     "HTTPS_PROXY",
                           "ALL_PROXY", "NO_PROXY",    "WAYLAND_DISPLAY"};

class Surroundings
{
public:
    Surroundings()
    {
        if (std::getenv(mark))
            return;
        ::umask(022);
        makeFolder();
        forget();
        set(mark, m_folder);
        set("HOME", made("home"));
        set("TMPDIR", made("tmp"));
        set("XDG_RUNTIME_DIR", made("run"));
        std::filesystem::permissions(m_folder + "/run", std::filesystem::perms::owner_all);
        // Nothing of the machine's desktop is found, or started on a session bus of the test's own.
        set("XDG_DATA_DIRS", made("share"));
        set("XDG_CONFIG_DIRS", made("etc"));
        set("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + m_folder + "/run/bus");
        set("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + m_folder + "/run/system-bus");
        // Qt's own screen without a display is smaller than the window.
        set("QT_QPA_PLATFORM", "offscreen:configfile=" TARNWICK_SCREEN);
        set("FONTCONFIG_FILE", TARNWICK_FONTS);
        set("LC_ALL", "C.UTF-8");
        // Neither the one in which all clocks agree, nor one that a machine may not know by name.
        set("TZ", "<+0530>-5:30");
    }
    // A crash leaves the folder to look at.
    ~Surroundings()
    {
        std::error_code ignored;
        if (::getpid() == m_owner)
            std::filesystem::remove_all(m_folder, ignored);
    }
    Surroundings(const Surroundings &) = delete;
    Surroundings &operator=(const Surroundings &) = delete;

private:
    void makeFolder()
    {
        const char *const parent = std::getenv("TMPDIR");
        m_folder = parent && *parent ? parent : "/tmp";
        m_folder += "/tarnwick-test-XXXXXX";
        // Others may look in: tests of the superuser act as somebody else at times.
        if (!::mkdtemp(m_folder.data()) || ::chmod(m_folder.c_str(), 0755) != 0) {
            std::fprintf(stderr, "%s cannot be made: %s\n", m_folder.c_str(), std::strerror(errno));
            std::abort();
        }
        m_owner = ::getpid();
    }

    static void forget()
    {
        std::vector<std::string> names(named.begin(), named.end());
        for (char **variable = environ; *variable; ++variable) {
            const std::string name(*variable, std::strcspn(*variable, "="));
            const auto begins = [&name](std::string_view prefix) { return name.starts_with(prefix); };
            if (std::any_of(forgotten.begin(), forgotten.end(), begins) &&
                std::none_of(kept.begin(), kept.end(), begins))
                names.push_back(name);
        }
        for (const std::string &name : names)
            ::unsetenv(name.c_str());
    }

    static void set(const char *name, const std::string &value) { ::setenv(name, value.c_str(), 1); }

    std::string made(const char *name) const
    {
        const std::string path = m_folder + '/' + name;
        std::filesystem::create_directory(path);
        return path;
    }

    std::string m_folder;
    pid_t m_owner = 0;
};

const Surroundings surroundings;

} // namespace
