#include "ui/widgets/Graphic.h"

#include <QAccessibleWidget>

namespace {

class GraphicAccessible : public QAccessibleWidget
{
public:
    explicit GraphicAccessible(Graphic *graphic) : QAccessibleWidget(graphic, QAccessible::Graphic) {}

    QAccessible::Role role() const override
    {
        return widget()->accessibleName().isEmpty() ? QAccessible::Client : QAccessible::Graphic;
    }
};

QAccessibleInterface *make(const QString &, QObject *object)
{
    auto *const graphic = qobject_cast<Graphic *>(object);
    return graphic ? new GraphicAccessible(graphic) : nullptr;
}

} // namespace

Graphic::Graphic(QWidget *parent) : QWidget(parent)
{
    [[maybe_unused]] static const bool installed = (QAccessible::installFactory(make), true);
}
