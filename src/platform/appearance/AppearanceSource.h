// What the desktop tells programs of the looks its user wishes for: light or dark, more contrast, a colour of
// accents, less motion.
#pragma once

#include <QObject>
#include <QtGui/qrgb.h>

#include <memory>
#include <optional>

struct AppearanceWishes
{
    enum class Scheme
    {
        none, // as the desktop's theme has it
        dark,
        light
    };

    Scheme scheme = Scheme::none;
    bool moreContrast = false;
    bool lessMotion = false;
    std::optional<QRgb> accent = {}; // opaque

    bool operator==(const AppearanceWishes &) const = default;
};

class AppearanceSource : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    // The desktop's own. Where nobody tells, it stays with no wish at all.
    static std::unique_ptr<AppearanceSource> ofDesktop();

    const AppearanceWishes &wishes() const { return m_wishes; }
    void setWishes(const AppearanceWishes &wishes);

Q_SIGNALS:
    void wishesChanged();

private:
    AppearanceWishes m_wishes;
};
