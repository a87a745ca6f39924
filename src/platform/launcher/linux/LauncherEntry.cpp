#include "platform/launcher/LauncherProgress.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QGuiApplication>
#include <QVariantMap>

using namespace Qt::StringLiterals;

namespace {

// The LauncherEntry interface of the Unity launcher, which today's docks listen to: a signal for whoever is
// there.
class LauncherEntry final : public LauncherProgress
{
public:
    ~LauncherEntry() override
    {
        if (m_isShown)
            show(std::nullopt);
    }

    void show(std::optional<double> fraction) override
    {
        m_isShown = fraction.has_value();
        const QVariantMap properties{{u"progress"_s, fraction.value_or(0)},
                                     {u"progress-visible"_s, m_isShown}};
        QDBusMessage update = QDBusMessage::createSignal(u"/io/github/tarnwick/Tarnwick/LauncherEntry"_s,
                                                         u"com.canonical.Unity.LauncherEntry"_s, u"Update"_s);
        update << u"application://%1.desktop"_s.arg(QGuiApplication::desktopFileName()) << properties;
        QDBusConnection::sessionBus().send(update);
    }

private:
    bool m_isShown = false;
};

} // namespace

std::unique_ptr<LauncherProgress> LauncherProgress::ofDesktop()
{
    return std::make_unique<LauncherEntry>();
}
