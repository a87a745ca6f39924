#include "platform/appearance/linux/SettingsPortal.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const QString service = u"org.freedesktop.portal.Desktop"_s;
const QString path = u"/org/freedesktop/portal/desktop"_s;
const QString interface = u"org.freedesktop.portal.Settings"_s;
const QString appearance = u"org.freedesktop.appearance"_s;
const QString gnome = u"org.gnome.desktop.interface"_s; // has said so longer when motion is to be reduced

// A portal that runs answers within a few milliseconds; one that is still to be started takes longer than a
// user should wait for the window.
constexpr int patience = 150; // ms

QDBusMessage question()
{
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, u"ReadAll"_s);
    call << QStringList{appearance, gnome};
    return call;
}

AppearanceWishes::Scheme schemeOf(const QVariant &value)
{
    switch (value.toUInt()) {
    case 1:
        return AppearanceWishes::Scheme::dark;
    case 2:
        return AppearanceWishes::Scheme::light;
    default:
        return AppearanceWishes::Scheme::none;
    }
}

// Red, green and blue from 0 to 1; what lies outside means that there is no such colour.
std::optional<QRgb> colorOf(const QVariant &value)
{
    if (!value.canConvert<QDBusArgument>())
        return std::nullopt;
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != "(ddd)"_L1)
        return std::nullopt;
    std::array<double, 3> parts{};
    argument.beginStructure();
    for (double &part : parts)
        argument >> part;
    argument.endStructure();
    if (!std::ranges::all_of(parts, [](double part) { return part >= 0 && part <= 1; }))
        return std::nullopt;
    const auto byte = [](double part) { return static_cast<int>(std::lround(part * 255)); };
    return qRgb(byte(parts[0]), byte(parts[1]), byte(parts[2]));
}

AppearanceWishes wishesIn(const SettingsPortal::Settings &settings)
{
    const QVariantMap told = settings.value(appearance);
    const bool animations = settings.value(gnome).value(u"enable-animations"_s, true).toBool();
    return {.scheme = schemeOf(told.value(u"color-scheme"_s)),
            .moreContrast = told.value(u"contrast"_s).toUInt() == 1,
            .lessMotion = told.value(u"reduced-motion"_s).toUInt() == 1 || !animations,
            .accent = colorOf(told.value(u"accent-color"_s))};
}

} // namespace

SettingsPortal::SettingsPortal(QObject *parent) : AppearanceSource(parent)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    qDBusRegisterMetaType<Settings>();
    qRegisterMetaType<QDBusVariant>(); // or Qt finds no slot that takes one
    bus.connect(service, path, interface, u"SettingChanged"_s, this,
                SLOT(change(QString, QString, QDBusVariant)));
    auto *const owner =
        new QDBusServiceWatcher(service, bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(owner, &QDBusServiceWatcher::serviceRegistered, this, &SettingsPortal::ask);
    askAtOnce();
}

void SettingsPortal::askAtOnce()
{
    const QDBusMessage answer = QDBusConnection::sessionBus().call(question(), QDBus::Block, patience);
    if (answer.type() == QDBusMessage::ReplyMessage)
        take(answer);
    else if (answer.errorName() == "org.freedesktop.DBus.Error.NoReply"_L1)
        ask();
}

void SettingsPortal::ask()
{
    auto *const call = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question()), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] {
        take(call->reply());
        call->deleteLater();
    });
}

void SettingsPortal::take(const QDBusMessage &answer)
{
    const QDBusPendingReply<Settings> reply(answer);
    if (!reply.isValid())
        return;
    m_settings = reply.value();
    setWishes(wishesIn(m_settings));
}

void SettingsPortal::change(const QString &space, const QString &key, const QDBusVariant &value)
{
    if (space != appearance && space != gnome)
        return;
    m_settings[space].insert(key, value.variant());
    setWishes(wishesIn(m_settings));
}

std::unique_ptr<AppearanceSource> AppearanceSource::ofDesktop()
{
    return std::make_unique<SettingsPortal>();
}
