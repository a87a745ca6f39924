// One message as assistive programs see it: an item of the transcript's list, with its text and its buttons.
#pragma once

#include "ui/chat/transcript/TranscriptButton.h"
#include "ui/widgets/AccessibleText.h"

#include <QAccessible>
#include <QPointer>

#include <vector>

class Transcript;

class MessageAccessible : public QAccessibleInterface, public AccessibleText
{
public:
    MessageAccessible(Transcript *transcript, int index);
    ~MessageAccessible() override;

    QAccessibleInterface *button(const TranscriptButton &button) const;

    bool isValid() const override;
    QObject *object() const override { return nullptr; }
    QWindow *window() const override;
    QAccessibleInterface *parent() const override;
    QAccessibleInterface *child(int index) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    int childCount() const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override;
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    QAccessible::State state() const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    // The message's text cannot be edited, and is selected by other means.
    void selection(int, int *start, int *end) const override { *start = *end = 0; }
    int selectionCount() const override { return 0; }
    void addSelection(int, int) override {}
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}
    int cursorPosition() const override { return 0; }
    void setCursorPosition(int) override {}
    QString text(int start, int end) const override;
    int characterCount() const override;
    QRect characterRect(int) const override { return rect(); }
    int offsetAtPoint(const QPoint &) const override { return 0; }
    void scrollToSubstring(int, int) override {}
    QString attributes(int, int *start, int *end) const override;

private:
    struct Child
    {
        TranscriptButton button;
        QAccessible::Id id;
    };

    QString shownText() const;

    const QPointer<Transcript> m_transcript;
    const int m_index;
    mutable std::vector<Child> m_buttons; // made when asked for
};
