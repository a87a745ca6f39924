#include "ui/chat/transcript/Transcript.h"

#include "platform/desktop/Desktop.h"
#include "ui/chat/transcript/CodeBlockBox.h"
#include "ui/chat/transcript/FlowText.h"
#include "ui/chat/transcript/TranscriptAccessible.h"
#include "ui/widgets/PlainText.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>
#include <QToolTip>
#include <QUrl>
#include <QWheelEvent>

Transcript::Transcript(Desktop &desktop, QWidget *parent)
    : TranscriptCanvas(parent), m_desktop(desktop), m_pointer(state(), viewport())
{
    TranscriptAccessible::install();
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Messages"));
    viewport()->setMouseTracking(true);
    verticalScrollBar()->installEventFilter(this);

    connect(this, &Transcript::messagesChanged, this,
            [this] { TranscriptAccessible::announceMessages(this); });
    connect(&m_pointer, &TranscriptPointer::triggered, this, &Transcript::press);
    connect(&m_pointer, &TranscriptPointer::linkClicked, this, &Transcript::openLink);
    connect(&m_pointer, &TranscriptPointer::changed, viewport(), qOverload<>(&QWidget::update));
    connect(&m_pointer, &TranscriptPointer::released, this, [this] {
        setHeld(false);
        offerSelection();
    });
    connect(&m_pointer, &TranscriptPointer::scrollWanted, this,
            [this](int distance) { scrollTo(transcript().top() + distance); });
}

void Transcript::press(const TranscriptButton &button)
{
    MessageBody &body = state().layout.body(button.message);
    switch (button.kind) {
    case TranscriptButton::disclosure:
        return toggleReasoning(button.message);
    case TranscriptButton::copyCode:
        return m_desktop.copyText(body.flow(MessagePart::text)->rows().code(button.block).toString());
    case TranscriptButton::openLink:
        return openLink(linkTarget(button));
    case TranscriptButton::copyAnswer:
        return m_desktop.copyText(transcript().item(button.message).message().parsed().answer);
    case TranscriptButton::regenerate:
        Q_EMIT regenerateRequested();
        return;
    case TranscriptButton::edit:
        Q_EMIT editRequested();
        return;
    }
}

void Transcript::toggleReasoning(int message)
{
    TranscriptLayout &layout = state().layout;
    layout.holdOn({message, {MessagePart::disclosure, 0}});
    layout.setOpen(message, !layout.item(message).facts().isOpen);
    if (state().selection.part == MessagePart::reasoning)
        state().selection = {};
    repaintAll();
}

void Transcript::openLink(const QString &target)
{
    if (ParagraphLayout::isOpenable(target))
        QDesktopServices::openUrl(QUrl(target, QUrl::StrictMode));
}

QString Transcript::label(const TranscriptButton &button)
{
    const FlowLink *const link = state().layout.body(button.message).link(button);
    return link ? link->text : buttonLabel(button.kind);
}

QString Transcript::linkTarget(const TranscriptButton &button)
{
    const FlowLink *const link = state().layout.body(button.message).link(button);
    return link ? link->target : QString();
}

std::optional<TranscriptButton> Transcript::buttonAt(QPoint point)
{
    const TranscriptHit hit = TranscriptHit::at(state().layout, point);
    if (!hit.link || !ParagraphLayout::isOpenable(hit.link->target))
        return hit.button;
    return TranscriptButton{hit.message, TranscriptButton::openLink, 0, hit.link->row, hit.link->index};
}

QString Transcript::messageText(int message)
{
    MessageBody &body = state().layout.body(message);
    QString text;
    for (const MessagePart part : {MessagePart::reasoning, MessagePart::text}) {
        const TextFlow &flow = *body.flow(part);
        if (body.partRect(part).isEmpty())
            continue;
        if (!text.isEmpty())
            text += u'\n';
        text += ::selectedText(flow, wholeText(flow));
    }
    return text;
}

void Transcript::copy()
{
    if (!state().selection.isEmpty())
        m_desktop.copyText(selectedText());
}

// For the middle button, where the desktop has such a thing.
void Transcript::offerSelection()
{
    QClipboard *const clipboard = QGuiApplication::clipboard();
    if (clipboard->supportsSelection() && !state().selection.isEmpty())
        clipboard->setText(selectedText(), QClipboard::Selection);
}

void Transcript::selectAll()
{
    state().selectAll();
    offerSelection();
    viewport()->update();
}

void Transcript::contextMenuEvent(QContextMenuEvent *event)
{
    // The release of the button goes to the menu.
    m_pointer.giveUp();
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction *const copying = menu->addAction(tr("Copy"), this, &Transcript::copy);
    copying->setEnabled(!state().selection.isEmpty());
    menu->addAction(tr("Select All"), this, &Transcript::selectAll);
    menu->popup(event->globalPos());
}

void Transcript::mousePressEvent(QMouseEvent *event)
{
    setHeld(true);
    setKeyboardFocus(false);
    m_pointer.press(*event);
}

void Transcript::mouseDoubleClickEvent(QMouseEvent *event)
{
    setHeld(true);
    m_pointer.doubleClick(*event);
}

void Transcript::mouseMoveEvent(QMouseEvent *event)
{
    if (m_pointer.isHeld() && event->buttons() == Qt::NoButton)
        m_pointer.giveUp();
    m_pointer.moveTo(*event);
}

void Transcript::mouseReleaseEvent(QMouseEvent *event)
{
    m_pointer.release(*event);
}

bool Transcript::eventFilter(QObject *watched, QEvent *event)
{
    // The right button opens the bar's menu, which takes the release.
    const auto *const mouse = watched == verticalScrollBar() ? dynamic_cast<QMouseEvent *>(event) : nullptr;
    if (mouse && mouse->button() != Qt::RightButton) {
        if (mouse->type() == QEvent::MouseButtonPress)
            setHeld(true);
        else if (mouse->type() == QEvent::MouseButtonRelease)
            setHeld(false);
    }
    return TranscriptCanvas::eventFilter(watched, event);
}

bool Transcript::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::Leave)
        m_pointer.leave();
    else if (event->type() == QEvent::ToolTip)
        return showLinkTip(static_cast<const QHelpEvent &>(*event));
    return TranscriptCanvas::viewportEvent(event);
}

// A link says where it leads before it is followed.
bool Transcript::showLinkTip(const QHelpEvent &event)
{
    const TranscriptHit hit = TranscriptHit::at(state().layout, event.pos());
    QToolTip::showText(event.globalPos(), plainToolTip(hit.link ? hit.link->target : QString()), viewport());
    return true;
}

void Transcript::wheelEvent(QWheelEvent *event)
{
    QPoint distance = event->pixelDelta().isNull() ? event->angleDelta() / 2 : event->pixelDelta();
    // Some systems have turned it by then.
    if (event->modifiers().testFlag(Qt::ShiftModifier) && distance.x() == 0)
        distance = distance.transposed();
    const TranscriptHit hit = TranscriptHit::at(state().layout, event->position().toPoint());
    if (qAbs(distance.x()) <= qAbs(distance.y()))
        return TranscriptCanvas::wheelEvent(event);
    event->setAccepted(hit.block && scrollCode(hit.message, *hit.block, -distance.x()));
}

bool Transcript::scrollCode(int message, int block, int distance)
{
    CodeBlockBox box(*state().layout.body(message).flow(MessagePart::text), block);
    const bool scrolled = box.scrollTo(box.scrolled() + distance);
    if (scrolled)
        viewport()->update();
    return scrolled;
}

void Transcript::keyPressEvent(QKeyEvent *event)
{
    const std::optional<TranscriptButton> focused = state().focused;
    const bool isPress =
        event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->matches(QKeySequence::Copy))
        copy();
    else if (event->matches(QKeySequence::SelectAll))
        selectAll();
    else if (focused && isPress)
        press(*focused);
    else if (!scrollByKey(event->key()))
        event->ignore();
}

bool Transcript::scrollByKey(int key)
{
    const int line = 2 * state().style.bodyLineHeight;
    const int page = viewport()->height() - line;
    const int top = transcript().top();
    const std::optional<TranscriptButton> focused = state().focused;
    switch (key) {
    case Qt::Key_Up:
        scrollTo(top - line);
        return true;
    case Qt::Key_Down:
        scrollTo(top + line);
        return true;
    case Qt::Key_PageUp:
        scrollTo(top - page);
        return true;
    case Qt::Key_PageDown:
        scrollTo(top + page);
        return true;
    case Qt::Key_Home:
        scrollTo(0);
        return true;
    case Qt::Key_End:
        scrollTo(transcript().end());
        return true;
    case Qt::Key_Left:
    case Qt::Key_Right:
        return focused && focused->kind == TranscriptButton::copyCode &&
               scrollCode(focused->message, focused->block, key == Qt::Key_Left ? -line : line);
    default:
        return false;
    }
}

void Transcript::focusButton(const TranscriptButton &button)
{
    state().layout.body(button.message);
    reveal(button);
    state().focused = button;
    setFocus(Qt::OtherFocusReason);
    setKeyboardFocus(true);
    TranscriptAccessible::announceFocus(this, button);
}

bool Transcript::focusNextPrevChild(bool next)
{
    if (!next && !state().focused)
        return TranscriptCanvas::focusNextPrevChild(false);
    if (const std::optional<TranscriptButton> neighbour = state().neighbour(next)) {
        focusButton(*neighbour);
        return true;
    }
    state().focused.reset();
    viewport()->update();
    return !next || TranscriptCanvas::focusNextPrevChild(true);
}

void Transcript::focusInEvent(QFocusEvent *event)
{
    const bool isBackwards = event->reason() == Qt::BacktabFocusReason;
    setKeyboardFocus(isBackwards || event->reason() == Qt::TabFocusReason);
    if (isBackwards) {
        state().focused.reset();
        if (const std::optional<TranscriptButton> last = state().neighbour(false))
            focusButton(*last);
    }
    TranscriptCanvas::focusInEvent(event);
}

void Transcript::focusOutEvent(QFocusEvent *event)
{
    viewport()->update();
    TranscriptCanvas::focusOutEvent(event);
}
