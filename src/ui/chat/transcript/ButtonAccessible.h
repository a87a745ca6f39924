// A painted button or link as assistive programs see it.
#pragma once

#include "ui/chat/transcript/TranscriptButton.h"

#include <QAccessible>
#include <QPointer>

class Transcript;

class ButtonAccessible : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    ButtonAccessible(Transcript *transcript, const TranscriptButton &button);

    bool isValid() const override;
    QObject *object() const override { return nullptr; }
    QWindow *window() const override;
    QAccessibleInterface *parent() const override;
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override;
    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    QStringList actionNames() const override;
    void doAction(const QString &name) override;
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    const QPointer<Transcript> m_transcript;
    const TranscriptButton m_button;
};
