#include "platform/desktop/StartupNotice.h"

#include "platform/desktop/linux/XcbAtom.h"

#include <QGuiApplication>

#include <algorithm>
#include <cstring>

// By the standards "Startup notification" and "Extended window manager hints" of freedesktop.org. Qt does
// this for the launch that it was itself started by and for no other.

namespace {

class Server
{
public:
    explicit Server(xcb_connection_t *connection)
        : m_connection(connection), m_root(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root)
    {
    }

    void setText(xcb_window_t window, const QByteArray &property, const QByteArray &text) const
    {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, atom(property), atom("UTF8_STRING"),
                            8, uint32_t(text.size()), text.constData());
    }

    void activate(xcb_window_t window, quint32 time) const
    {
        xcb_client_message_event_t event = {};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = window;
        event.type = atom("_NET_ACTIVE_WINDOW");
        event.data.data32[0] = 1; // asked for by an application
        event.data.data32[1] = time;
        send(event, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
    }

    // Twenty bytes an event, the terminating zero among them.
    void broadcast(const QByteArray &message) const
    {
        const xcb_window_t sender = xcb_generate_id(m_connection);
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, sender, m_root, -1, -1, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_client_message_event_t event = {};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 8;
        event.window = sender;
        event.type = atom("_NET_STARTUP_INFO_BEGIN");
        for (qsizetype sent = 0; sent <= message.size(); sent += qsizetype(sizeof event.data.data8)) {
            const QByteArray part = message.mid(sent, sizeof event.data.data8);
            std::memset(event.data.data8, 0, sizeof event.data.data8);
            std::copy(part.begin(), part.end(), event.data.data8);
            send(event, XCB_EVENT_MASK_PROPERTY_CHANGE);
            event.type = atom("_NET_STARTUP_INFO");
        }
        xcb_destroy_window(m_connection, sender);
    }

private:
    xcb_atom_t atom(const QByteArray &name) const { return xcbAtom(m_connection, name); }

    void send(const xcb_client_message_event_t &event, uint32_t mask) const
    {
        xcb_send_event(m_connection, 0, m_root, mask, reinterpret_cast<const char *>(&event));
    }

    xcb_connection_t *const m_connection;
    const xcb_window_t m_root;
};

// The X server's time of the launch, in milliseconds; 0: not told.
quint32 startupTime(const QByteArray &startupId)
{
    const QByteArray mark = "_TIME";
    const qsizetype place = startupId.lastIndexOf(mark);
    return place < 0 ? 0 : startupId.sliced(place + mark.size()).toUInt();
}

// Within quotes, by the standard's rule.
QByteArray quoted(QByteArray text)
{
    return '"' + text.replace('\\', "\\\\").replace('"', "\\\"") + '"';
}

} // namespace

void noticeStartup(WId window, const QByteArray &startupId)
{
    const auto *const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    // Some plugins have the interface and no server behind it.
    if (!x11 || !x11->connection() || startupId.isEmpty())
        return;
    const Server server(x11->connection());
    const auto id = xcb_window_t(window);
    server.setText(id, "_NET_STARTUP_ID", startupId);
    if (const quint32 time = startupTime(startupId))
        server.activate(id, time);
    server.broadcast("remove: ID=" + quoted(startupId));
    xcb_flush(x11->connection());
}
