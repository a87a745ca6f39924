// One thing that means harm, and where it strikes.
#pragma once

#include <QList>
#include <QString>

struct HostileCase
{
    enum Subject
    {
        wire,   // HTTP of one endpoint
        answer, // what one endpoint says
        file,   // what lies in the chats folder
        text    // what the user brings in
    };

    Subject subject = wire;
    QString where; // an endpoint, or what the user does with a text
    QString name;

    // As it is told, and chosen by.
    QString title() const;

    static QList<HostileCase> all();
};
