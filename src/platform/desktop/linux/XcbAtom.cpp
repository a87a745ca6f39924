#include "platform/desktop/linux/XcbAtom.h"

#include <cstdlib>
#include <memory>

namespace {

struct Free
{
    void operator()(void *memory) const { std::free(memory); }
};

} // namespace

xcb_atom_t xcbAtom(xcb_connection_t *connection, const QByteArray &name)
{
    const auto cookie = xcb_intern_atom(connection, 0, uint16_t(name.size()), name.constData());
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}
