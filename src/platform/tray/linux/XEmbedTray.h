// Whether the X11 screen has a tray of the older kind, into which programs put little windows by the System
// Tray Protocol of freedesktop.org. Without X11 it never has.
#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <xcb/xcb.h>

class XEmbedTray final : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    explicit XEmbedTray(QObject *parent = nullptr);
    ~XEmbedTray() override;

    bool isPresent() const { return m_tray != XCB_WINDOW_NONE; }

Q_SIGNALS:
    void presentChanged();

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;
    void find();

    xcb_connection_t *m_connection = nullptr; // Qt's, which hears of every tray that comes
    xcb_atom_t m_selection = XCB_ATOM_NONE;   // that the tray owns
    xcb_atom_t m_manager = XCB_ATOM_NONE;     // by which it announces itself
    xcb_window_t m_tray = XCB_WINDOW_NONE;
};
