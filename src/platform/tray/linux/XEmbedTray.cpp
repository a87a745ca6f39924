#include "platform/tray/linux/XEmbedTray.h"

#include "platform/desktop/linux/XcbAtom.h"

#include <QGuiApplication>

#include <cstdlib>
#include <utility>

XEmbedTray::XEmbedTray(QObject *parent) : QObject(parent)
{
    const auto *const application = qobject_cast<QGuiApplication *>(QCoreApplication::instance());
    const auto *const x11 =
        application ? application->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    // Some plugins have the interface and no server behind it.
    if (!x11 || !x11->connection())
        return;
    m_connection = x11->connection();
    m_selection = xcbAtom(m_connection, "_NET_SYSTEM_TRAY_S0");
    m_manager = xcbAtom(m_connection, "MANAGER");
    QCoreApplication::instance()->installNativeEventFilter(this);
    find();
}

// Qt takes the filter away with it.
XEmbedTray::~XEmbedTray() = default;

bool XEmbedTray::nativeEventFilter(const QByteArray & /*type*/, void *message, qintptr * /*result*/)
{
    const auto *const event = static_cast<const xcb_generic_event_t *>(message);
    constexpr uint8_t sentMark = 0x80;
    const auto kind = uint8_t(event->response_type & ~sentMark);
    if (kind == XCB_CLIENT_MESSAGE) {
        const auto *const news = reinterpret_cast<const xcb_client_message_event_t *>(event);
        if (news->type == m_manager && news->data.data32[1] == m_selection)
            find();
    } else if (kind == XCB_DESTROY_NOTIFY &&
               reinterpret_cast<const xcb_destroy_notify_event_t *>(event)->window == m_tray) {
        find();
    }
    return false;
}

void XEmbedTray::find()
{
    const auto cookie = xcb_get_selection_owner(m_connection, m_selection);
    xcb_get_selection_owner_reply_t *const reply =
        xcb_get_selection_owner_reply(m_connection, cookie, nullptr);
    const xcb_window_t tray = reply ? reply->owner : xcb_window_t(XCB_WINDOW_NONE);
    std::free(reply);
    if (tray != XCB_WINDOW_NONE) {
        const uint32_t itsEnd = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(m_connection, tray, XCB_CW_EVENT_MASK, &itsEnd);
        xcb_flush(m_connection);
    }
    if (std::exchange(m_tray, tray) != tray)
        Q_EMIT presentChanged();
}
