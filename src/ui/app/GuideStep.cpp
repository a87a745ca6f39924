#include "ui/app/GuideStep.h"

#include "ui/widgets/SymbolLabel.h"
#include "ui/widgets/TextLabel.h"

#include <QAccessibleWidget>

using namespace Qt::StringLiterals;

namespace {

QString numberSymbol(int number)
{
    return u"%1.circle"_s.arg(number);
}

// Whoever enters the step with the keyboard hears its name.
QAccessibleInterface *make(const QString &, QObject *object)
{
    auto *const step = qobject_cast<GuideStep *>(object);
    return step ? new QAccessibleWidget(step, QAccessible::Grouping) : nullptr;
}

} // namespace

GuideStep::GuideStep(int number, const QString &title, QWidget *parent)
    : Card(parent),
      m_number(number),
      m_title(title),
      m_mark(new SymbolLabel(numberSymbol(number), TextStyle::title, Tint::accentInk)),
      m_content(new QVBoxLayout)
{
    [[maybe_unused]] static const bool installed = (QAccessible::installFactory(make), true);
    setRadius(12);
    auto *heading = new TextLabel(title, TextStyle::title3);
    heading->setBold();
    m_content->setSpacing(8);
    m_content->addWidget(heading);
    auto *row = new QHBoxLayout;
    row->setSpacing(14);
    row->addWidget(m_mark, 0, Qt::AlignTop);
    row->addLayout(m_content, 1);
    column()->setContentsMargins(14, 14, 14, 14);
    column()->addLayout(row);
    setDone(false);
}

void GuideStep::setDone(bool done)
{
    m_mark->setSymbol(done ? u"checkmark.circle.fill"_s : numberSymbol(m_number),
                      done ? Tint::green : Tint::accentInk);
    m_mark->setAccessibleName(done ? tr("Step %1, done").arg(m_number) : tr("Step %1").arg(m_number));
    setAccessibleName(m_mark->accessibleName() + u": "_s + m_title);
}
