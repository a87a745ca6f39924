#include "ui/widgets/LineEditAccessible.h"

#include <QFontMetrics>
#include <QLineEdit>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QAccessibleInterface *make(const QString &className, QObject *object)
{
    auto *const edit = className == "QLineEdit"_L1 ? qobject_cast<QLineEdit *>(object) : nullptr;
    return edit && edit->echoMode() == QLineEdit::Normal ? new LineEditAccessible(edit) : nullptr;
}

} // namespace

LineEditAccessible::LineEditAccessible(QLineEdit *edit) : QAccessibleWidget(edit, QAccessible::EditableText)
{
    addControllingSignal(u"textChanged(QString)"_s);
    addControllingSignal(u"returnPressed()"_s);
}

void LineEditAccessible::install()
{
    [[maybe_unused]] static const bool installed = (QAccessible::installFactory(make), true);
}

QLineEdit &LineEditAccessible::edit() const
{
    return *static_cast<QLineEdit *>(object());
}

QString LineEditAccessible::text(QAccessible::Text kind) const
{
    if (kind == QAccessible::Value)
        return edit().text();
    const QString text = QAccessibleWidget::text(kind);
    return text.isEmpty() && kind == QAccessible::Description ? edit().placeholderText() : text;
}

void LineEditAccessible::setText(QAccessible::Text kind, const QString &text)
{
    if (kind == QAccessible::Value)
        replaceText(0, characterCount(), text);
    else
        QAccessibleWidget::setText(kind, text);
}

QAccessible::State LineEditAccessible::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.editable = !edit().isReadOnly();
    state.readOnly = edit().isReadOnly();
    state.selectableText = true;
    state.selected = edit().hasSelectedText();
    return state;
}

void *LineEditAccessible::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::TextInterface)
        return static_cast<QAccessibleTextInterface *>(this);
    if (type == QAccessible::EditableTextInterface)
        return static_cast<QAccessibleEditableTextInterface *>(this);
    return QAccessibleWidget::interface_cast(type);
}

void LineEditAccessible::selection(int index, int *start, int *end) const
{
    const bool isOne = index == 0 && edit().hasSelectedText();
    *start = isOne ? edit().selectionStart() : 0;
    *end = isOne ? edit().selectionEnd() : 0;
}

int LineEditAccessible::selectionCount() const
{
    return edit().hasSelectedText() ? 1 : 0;
}

void LineEditAccessible::removeSelection(int index)
{
    if (index == 0)
        edit().deselect();
}

void LineEditAccessible::setSelection(int index, int start, int end)
{
    const int from = std::clamp(start, 0, characterCount());
    const int to = std::clamp(end, 0, characterCount());
    if (index == 0)
        edit().setSelection(from, to - from);
}

int LineEditAccessible::cursorPosition() const
{
    return edit().cursorPosition();
}

void LineEditAccessible::setCursorPosition(int position)
{
    edit().setCursorPosition(position);
}

QString LineEditAccessible::text(int start, int end) const
{
    const int from = std::clamp(start, 0, characterCount());
    const int to = end < 0 ? characterCount() : std::clamp(end, from, characterCount());
    return edit().text().sliced(from, to - from);
}

// There is one line, whatever its text breaks into elsewhere.
QString LineEditAccessible::textBeforeOffset(int offset, QAccessible::TextBoundaryType boundary, int *start,
                                             int *end) const
{
    if (boundary != QAccessible::LineBoundary)
        return AccessibleText::textBeforeOffset(offset, boundary, start, end);
    *start = *end = -1;
    return {};
}

QString LineEditAccessible::textAfterOffset(int offset, QAccessible::TextBoundaryType boundary, int *start,
                                            int *end) const
{
    if (boundary != QAccessible::LineBoundary)
        return AccessibleText::textAfterOffset(offset, boundary, start, end);
    *start = *end = -1;
    return {};
}

QString LineEditAccessible::textAtOffset(int offset, QAccessible::TextBoundaryType boundary, int *start,
                                         int *end) const
{
    if (boundary != QAccessible::LineBoundary)
        return AccessibleText::textAtOffset(offset, boundary, start, end);
    *start = 0;
    *end = characterCount();
    return edit().text();
}

int LineEditAccessible::characterCount() const
{
    return static_cast<int>(edit().text().size());
}

QRect LineEditAccessible::characterRect(int offset) const
{
    if (offset < 0 || offset >= characterCount())
        return {};
    // QLineEdit tells the place of its cursor alone.
    const QRect cursor = edit().inputMethodQuery(Qt::ImCursorRectangle).toRect();
    const QFontMetrics metrics = edit().fontMetrics();
    const QString text = edit().text();
    const int left = cursor.left() + metrics.horizontalAdvance(text, offset) -
                     metrics.horizontalAdvance(text, edit().cursorPosition());
    const QSize size(metrics.horizontalAdvance(text.at(offset)), cursor.height());
    return {edit().mapToGlobal(QPoint(left, cursor.top())), size};
}

int LineEditAccessible::offsetAtPoint(const QPoint &point) const
{
    return edit().cursorPositionAt(edit().mapFromGlobal(point));
}

void LineEditAccessible::scrollToSubstring(int start, int end)
{
    setCursorPosition(end);
    setCursorPosition(start);
}

QString LineEditAccessible::attributes(int, int *start, int *end) const
{
    *start = 0;
    *end = characterCount();
    return {};
}

void LineEditAccessible::deleteText(int start, int end)
{
    replaceText(start, end, {});
}

void LineEditAccessible::insertText(int offset, const QString &text)
{
    replaceText(offset, offset, text);
}

void LineEditAccessible::replaceText(int start, int end, const QString &text)
{
    if (edit().isReadOnly())
        return;
    setSelection(0, start, std::max(start, end)); // or moves the cursor, where nothing is between them
    edit().insert(text);
}
