// The transcript as assistive programs see it: a list of messages.
#pragma once

#include <QAccessibleWidget>

#include <map>

class Transcript;
struct TranscriptButton;

class TranscriptAccessible : public QAccessibleWidget
{
public:
    explicit TranscriptAccessible(Transcript *transcript);
    ~TranscriptAccessible() override;

    // Lets every transcript be seen in this way.
    static void install();
    // Say what happened to `transcript`, where anybody listens.
    static void announceFocus(Transcript *transcript, const TranscriptButton &button);
    static void announceMessages(Transcript *transcript);

    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    QAccessibleInterface *focusChild() const override;
    int indexOfChild(const QAccessibleInterface *child) const override;

private:
    Transcript &transcript() const;

    mutable std::map<int, QAccessible::Id> m_messages; // by their index, made when asked for
};
