#include "ui/widgets/Switch.h"

#include "ui/widgets/Tint.h"

#include <QPainter>
#include <QScopedValueRollback>

namespace {

constexpr QSize trackSize(32, 18);
constexpr int knobInset = 2;
constexpr int ring = 2; // room for the focus ring
constexpr int gap = 8;  // between track and label

} // namespace

Switch::Switch(const QString &text, QWidget *parent) : QCheckBox(text, parent)
{
    // The action that screen readers use changes the state without a click.
    connect(this, &QCheckBox::toggled, this, [this](bool on) {
        if (!m_expected)
            Q_EMIT clicked(on);
    });
}

void Switch::setChecked(bool on)
{
    const QScopedValueRollback expected(m_expected, true);
    QCheckBox::setChecked(on);
}

void Switch::nextCheckState()
{
    const QScopedValueRollback expected(m_expected, true);
    QCheckBox::nextCheckState();
}

QSize Switch::sizeHint() const
{
    const QSize label = fontMetrics().size(Qt::TextShowMnemonic, text());
    return {trackSize.width() + 2 * ring + gap + label.width(),
            qMax(trackSize.height() + 2 * ring, label.height())};
}

bool Switch::hitButton(const QPoint &position) const
{
    return rect().contains(position);
}

void Switch::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    // The disabled colours would fade a second time.
    QPalette colors = palette();
    colors.setCurrentColorGroup(isActiveWindow() ? QPalette::Active : QPalette::Inactive);
    painter.setOpacity(isEnabled() ? 1.0 : 0.5);
    const bool mirrored = layoutDirection() == Qt::RightToLeft;
    QRectF track(QPointF(ring, (height() - trackSize.height()) / 2.0), trackSize);
    if (mirrored)
        track.moveRight(width() - ring);
    const double radius = track.height() / 2;

    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange)) {
        painter.setPen(QPen(tintColor(Tint::accentInk, colors), 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(track.adjusted(-1, -1, 1, 1), radius + 1, radius + 1);
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(isChecked() ? tintColor(Tint::accentInk, colors) : tintColor(Tint::text, colors, 0.28));
    painter.drawRoundedRect(track, radius, radius);

    QRectF knob = track.adjusted(knobInset, knobInset, -knobInset, -knobInset);
    knob.setWidth(knob.height());
    if (isChecked() != mirrored)
        knob.moveRight(track.right() - knobInset);
    painter.setBrush(Qt::white);
    painter.drawEllipse(knob);

    painter.setPen(colors.color(QPalette::WindowText));
    const int taken = trackSize.width() + 2 * ring + gap;
    const QRect label = mirrored ? rect().adjusted(0, 0, -taken, 0) : rect().adjusted(taken, 0, 0, 0);
    painter.drawText(label, Qt::AlignVCenter | Qt::AlignLeading | Qt::TextShowMnemonic, text());
}
