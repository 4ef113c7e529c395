#include "Compositor.h"

#include "ProcessWide.h"

#include <QByteArray>
#include <QGuiApplication>

#include <xcb/xcb.h>

#include <array>
#include <cstdlib>
#include <memory>

namespace hazelmark {

namespace {

template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, decltype(&std::free)>;

/// Null on any other platform than X11.
xcb_connection_t *x11Connection()
{
    const auto *x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

xcb_atom_t atom(xcb_connection_t *connection, const QByteArray &name)
{
    const ReplyPointer<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection,
                              xcb_intern_atom(connection, false, static_cast<uint16_t>(name.size()), name.constData()),
                              nullptr),
        &std::free);
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

bool windowManagerSupports(xcb_connection_t *connection, const QByteArray &name)
{
    constexpr uint32_t kMostAtoms = 4096;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const ReplyPointer<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(
            connection,
            xcb_get_property(connection, false, root, atom(connection, "_NET_SUPPORTED"), XCB_ATOM_ATOM, 0, kMostAtoms),
            nullptr),
        &std::free);
    if (!reply || reply->format != 32)
        return false;
    const auto *atoms = static_cast<const xcb_atom_t *>(xcb_get_property_value(reply.get()));
    const xcb_atom_t wanted = atom(connection, name);
    for (uint32_t i = 0; i < reply->value_len; ++i) {
        if (atoms[i] == wanted)
            return true;
    }
    return false;
}

} // namespace

const Compositor &Compositor::current()
{
    return ProcessWide<Compositor>::instance();
}

bool Compositor::isComposited() const
{
    if (xcb_connection_t *connection = x11Connection()) {
        // A compositing manager owns this selection of its screen.
        const ReplyPointer<xcb_get_selection_owner_reply_t> owner(
            xcb_get_selection_owner_reply(
                connection, xcb_get_selection_owner(connection, atom(connection, "_NET_WM_CM_S0")), nullptr),
            &std::free);
        return owner && owner->owner != XCB_WINDOW_NONE;
    }
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

bool Compositor::acceptsFrameExtents() const
{
    xcb_connection_t *connection = x11Connection();
    return connection && isComposited() && windowManagerSupports(connection, "_GTK_FRAME_EXTENTS");
}

void Compositor::setFrameExtents(WId window, const QMargins &extents) const
{
    xcb_connection_t *connection = x11Connection();
    if (!connection)
        return;
    const std::array<uint32_t, 4> values{static_cast<uint32_t>(extents.left()), static_cast<uint32_t>(extents.right()),
                                         static_cast<uint32_t>(extents.top()), static_cast<uint32_t>(extents.bottom())};
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window),
                        atom(connection, "_GTK_FRAME_EXTENTS"), XCB_ATOM_CARDINAL, 32, values.size(), values.data());
}

} // namespace hazelmark
