#include "ui/chat/TextZoom.h"

#include "platform/defaults/UserDefaults.h"

#include <QWheelEvent>
#include <QWidget>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace {

const QString key = u"textSize"_s; // in percent

constexpr int usual = 100;
// As browsers have them.
constexpr int steps[] = {70, 80, 90, 100, 110, 125, 150, 175, 200, 250, 300};
constexpr int smallest = steps[0];
constexpr int largest = steps[std::size(steps) - 1];

} // namespace

TextZoom::TextZoom(UserDefaults &defaults, QObject *parent) : QObject(parent), m_defaults(defaults)
{
    connect(&defaults, &UserDefaults::changed, this, [this](const QString &what) {
        if (what == key)
            Q_EMIT changed();
    });
}

int TextZoom::percent() const
{
    const int stored = m_defaults.integer(key);
    return stored == 0 ? usual : std::clamp(stored, smallest, largest);
}

bool TextZoom::isLargest() const
{
    return percent() == largest;
}

bool TextZoom::isSmallest() const
{
    return percent() == smallest;
}

void TextZoom::step(int direction)
{
    const int now = percent();
    const int *const above = std::upper_bound(std::begin(steps), std::end(steps), now);
    const int *const from = std::lower_bound(std::begin(steps), std::end(steps), now);
    if (direction > 0 && above != std::end(steps))
        m_defaults.set(key, *above);
    else if (direction < 0 && from != std::begin(steps))
        m_defaults.set(key, *(from - 1));
}

void TextZoom::reset()
{
    m_defaults.remove(key);
}

void TextZoom::followWheel(QWidget *viewport)
{
    viewport->installEventFilter(this);
}

bool TextZoom::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Wheel)
        return QObject::eventFilter(watched, event);
    const auto &wheel = static_cast<QWheelEvent &>(*event);
    if (!wheel.modifiers().testFlag(Qt::ControlModifier))
        return QObject::eventFilter(watched, event);
    turn(wheel);
    event->accept();
    return true;
}

// Wheels without notches, and touchpads, report small parts of a step.
void TextZoom::turn(const QWheelEvent &wheel)
{
    constexpr int notch = QWheelEvent::DefaultDeltasPerStep;
    const int delta = wheel.angleDelta().y();
    if ((delta > 0) != (m_turned > 0))
        m_turned = 0;
    m_turned += delta;
    for (; m_turned >= notch; m_turned -= notch)
        grow();
    for (; m_turned <= -notch; m_turned += notch)
        shrink();
}
