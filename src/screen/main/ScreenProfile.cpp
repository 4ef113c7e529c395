#include "ScreenProfile.h"

#include <QGuiApplication>
#include <QScreen>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace hazelmark {

namespace {

/// Longer properties are no profile of a monitor. In units of four bytes, as the protocol counts.
constexpr uint32_t kMaxLength = 4 * 1024 * 1024 / 4;

template <typename T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

QByteArray rootWindowProperty(xcb_connection_t *connection, const QByteArray &name)
{
    const auto asked = xcb_intern_atom(connection, 1, static_cast<uint16_t>(name.size()), name.constData());
    const Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(connection, asked, nullptr), &std::free);
    if (!atom || atom->atom == XCB_ATOM_NONE)
        return {};
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const auto read = xcb_get_property(connection, 0, root, atom->atom, XCB_GET_PROPERTY_TYPE_ANY, 0, kMaxLength);
    const Reply<xcb_get_property_reply_t> property(xcb_get_property_reply(connection, read, nullptr), &std::free);
    if (!property || property->format != 8 || property->bytes_after != 0)
        return {};
    return QByteArray(static_cast<const char *>(xcb_get_property_value(property.get())),
                      xcb_get_property_value_length(property.get()));
}

} // namespace

QByteArray screenProfile(const QScreen *screen)
{
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11 || !x11->connection())
        return {};
    const auto number = QGuiApplication::screens().indexOf(const_cast<QScreen *>(screen));
    QByteArray name("_ICC_PROFILE");
    if (number > 0)
        name += '_' + QByteArray::number(number);
    return rootWindowProperty(x11->connection(), name);
}

} // namespace hazelmark
