#include "core/app/AppState.h"
#include "core/app/Shutdown.h"
#include "core/engine/AppPaths.h"
#include "core/engine/ChildProcessHolder.h"
#include "platform/appearance/AppearanceSource.h"
#include "platform/defaults/UserDefaults.h"
#include "platform/instance/SingleInstance.h"
#include "platform/instance/TerminationSignals.h"
#include "platform/loginitem/LoginItem.h"
#include "platform/tray/TrayHost.h"
#include "ui/app/Appearance.h"
#include "ui/app/DesktopTies.h"
#include "ui/app/GuideView.h"
#include "ui/app/LaunchFailure.h"
#include "ui/app/MainWindow.h"
#include "ui/app/QtDesktop.h"
#include "ui/app/SettingsView.h"
#include "ui/app/StatusItem.h"
#include "ui/app/Translations.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QIcon>
#include <QScopeGuard>

#include <algorithm>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

// Where one running program keeps everything it writes.
struct Profile
{
    QString folder;        // holds the single-instance lock; empty: there is none
    QString settingsFile;  // empty: the desktop's own place for settings
    QStringList arguments; // with which a launch finds this profile again
};

struct CommandLine
{
    Profile profile;
    LaunchRequest::Wish wish = LaunchRequest::Wish::show;
};

CommandLine readCommandLine()
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QApplication::translate("main", "Runs large language models on this machine."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption folder(
        u"profile"_s, QApplication::translate("main", "Keep conversations, models and settings in <folder>."),
        QApplication::translate("main", "folder"));
    parser.addOption(folder);
    const QCommandLineOption newChat(u"new-chat"_s, QApplication::translate("main", "Begin a new chat."));
    parser.addOption(newChat);
    parser.process(*QCoreApplication::instance());
    const auto wish = parser.isSet(newChat) ? LaunchRequest::Wish::newChat : LaunchRequest::Wish::show;
    if (!parser.isSet(folder)) {
        // Qt would take the root folder for a home that nobody names.
        const bool isNowhere =
            qEnvironmentVariableIsEmpty("HOME") && qEnvironmentVariableIsEmpty("XDG_DATA_HOME");
        return {{isNowhere ? QString() : AppPaths::applicationDir(), {}, {}}, wish};
    }

    const QDir profile(parser.value(folder));
    AppPaths::setApplicationDir(profile.absoluteFilePath(u"Tarnwick"_s));
    return {{profile.absolutePath(),
             profile.absoluteFilePath(u"settings.ini"_s),
             {u"--profile"_s, profile.absolutePath()}},
            wish};
}

std::unique_ptr<UserDefaults> openDefaults(const Profile &profile)
{
    if (profile.settingsFile.isEmpty())
        return std::make_unique<UserDefaults>();
    return std::make_unique<UserDefaults>(profile.settingsFile);
}

Task<> quit(MainWindow *window, SingleInstance *instance, bool *quitting)
{
    if (std::exchange(*quitting, true))
        co_return;
    // A launch from now on takes this one's place.
    instance->stopAnswering();
    window->close();
    // The settings, and whatever dialog is open.
    const QWidgetList others = QApplication::topLevelWidgets();
    for (QWidget *other : others)
        other->hide();
    co_await shutDown(AppState::shared());
    QCoreApplication::exit();
}

// Each opening is a new window; one that is open comes to the front.
auto settingsOpener(AppState &state, Desktop &desktop, UserDefaults &defaults, LoginItem &loginItem,
                    MainWindow &window)
{
    return [&, open = QPointer<SettingsView>()]() mutable {
        if (!open) {
            open = new SettingsView(state, desktop, defaults, loginItem, &window);
            open->setAttribute(Qt::WA_DeleteOnClose);
        }
        open->show();
        open->raise();
        open->activateWindow();
    };
}

void beginChat(AppState &state, const UserDefaults &defaults)
{
    if (GuideView::isDone(defaults))
        state.newChat();
}

// Before the engine has told its models, a chat could have none; who turns to another tab meanwhile no longer
// waits for one.
void beginChatOnceStarted(AppState &state, const UserDefaults &defaults, MainWindow &window)
{
    auto *const wish = new QObject(&window);
    QObject::connect(&state, &AppState::started, wish, [&] { beginChat(state, defaults); });
    QObject::connect(&state, &AppState::started, wish, &QObject::deleteLater);
    QObject::connect(&state, &AppState::tabChanged, wish, &QObject::deleteLater);
}

void show(MainWindow &window, QtDesktop &desktop, const Activation &activation)
{
    // On X11 Qt does all that it takes for the launch of a program itself.
    if (activation.token.isEmpty())
        window.show();
    else
        desktop.bringToFront({activation.token, {}});
}

int run(const Profile &profile, const LaunchRequest &launch, SingleInstance &instance)
{
    const std::unique_ptr<UserDefaults> defaults = openDefaults(profile);
    QtDesktop desktop;
    AppState &state = AppState::makeShared({*defaults, desktop, AppPaths::chatsDir()});
    const auto dropState = qScopeGuard([] { AppState::dropShared(); });
    const std::unique_ptr<LoginItem> loginItem = LoginItem::ofDesktop(profile.arguments);
    const std::unique_ptr<TrayHost> trayHost = TrayHost::ofDesktop();
    MainWindow window(state, desktop, *defaults);
    desktop.setMainWindow(&window);
    const DesktopTies ties(state, desktop);
    StatusItem statusItem(state, desktop, *defaults, *trayHost);
    window.setStaysWhenClosed([&statusItem] { return statusItem.isShown(); });

    bool quitting = false;
    const auto quitOnce = [&] { quit(&window, &instance, &quitting); };
    const TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::terminationRequested, &window, quitOnce);
    QObject::connect(&window, &MainWindow::quitRequested, &window, quitOnce);
    QObject::connect(&statusItem, &StatusItem::quitRequested, &window, quitOnce);
    QObject::connect(&statusItem, &StatusItem::shownChanged, &window, [&] {
        // Without its item, a program whose window is closed could no longer be reached.
        if (!quitting && !statusItem.isShown() && !window.isVisible())
            desktop.bringToFront();
    });
    QObject::connect(&window, &MainWindow::settingsRequested, &window,
                     settingsOpener(state, desktop, *defaults, *loginItem, window));
    QObject::connect(&instance, &SingleInstance::requested, &window, [&](const LaunchRequest &other) {
        desktop.bringToFront(other.activation);
        if (other.wish == LaunchRequest::Wish::newChat)
            beginChat(state, *defaults);
    });
#ifndef Q_OS_LINUX // where the engine's keeper does it, and gives a pull the time it needs
    // Also where the desktop ends the event loop, as at the end of its session.
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, &window,
                     [] { ChildProcessHolder::shared().terminate(); });
#endif

    if (launch.wish == LaunchRequest::Wish::newChat)
        beginChatOnceStarted(state, *defaults, window);
    if (!defaults->isRead())
        state.setBanner(
            QApplication::translate("main", "The settings cannot be read and are not kept this time."));
    show(window, desktop, launch.activation);
    return QApplication::exec();
}

bool asksForText(int argc, char **argv)
{
    const auto isOne = [](const char *argument) {
        return QByteArrayList{"-v", "--version", "-h", "--help", "--help-all"}.contains(argument);
    };
    return std::any_of(argv + 1, argv + argc, isOne);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication::setApplicationName(u"Tarnwick"_s);
    QCoreApplication::setOrganizationName(u"Tarnwick"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(TARNWICK_VERSION));
    if (asksForText(argc, argv)) {
        const QCoreApplication withoutDisplay(argc, argv);
        const Translations translations;
        readCommandLine();
    }
    // Qt takes one of them, or both.
    const Activation activation = Activation::fromEnvironment();
    const QApplication application(argc, argv);
    Activation::clearEnvironment();
    const Translations translations;
    // The name of the desktop entry, by which desktops tell whose a window is; those without one are shown
    // the icon.
    QGuiApplication::setDesktopFileName(QStringLiteral(TARNWICK_ID));
    QGuiApplication::setWindowIcon(QIcon(u":/icon.svg"_s));
    // Quitting takes a turn or two of the event loop, so the last window going must not end it.
    QApplication::setQuitOnLastWindowClosed(false);
    const std::unique_ptr<AppearanceSource> wishes = AppearanceSource::ofDesktop();
    const Appearance appearance(*wishes);

    const CommandLine commandLine = readCommandLine();
    const LaunchRequest launch{commandLine.wish, activation};
    if (commandLine.profile.folder.isEmpty())
        return LaunchFailure::show(LaunchFailure::noHome());
    SingleInstance instance(commandLine.profile.folder);
    const SingleInstance::Claim claim = instance.claim(launch);
    if (claim.outcome == SingleInstance::Claim::Outcome::handedOver)
        return EXIT_SUCCESS;
    if (claim.outcome != SingleInstance::Claim::Outcome::first)
        return LaunchFailure::show(LaunchFailure::sentence(claim));
    return run(commandLine.profile, launch, instance);
}
