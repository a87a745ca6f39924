// A desktop without panels: it answers what the test told it to, and remembers what it was asked.
#pragma once

#include "platform/desktop/Desktop.h"

#include <QString>
#include <QStringList>

#include <optional>

class FakeDesktop final : public Desktop
{
public:
    Task<std::optional<QString>> chooseSaveFile(QString suggestedName) override
    {
        asked.append(suggestedName);
        const auto picked = answer; // what is returned is moved away
        co_return picked;
    }
    Task<std::optional<QString>> chooseFile(QString title) override
    {
        asked.append(title);
        const auto picked = answer;
        co_return picked;
    }
    void copyText(const QString &text) override { pasteboard = text; }
    void revealInFileManager(const QString &path) override { revealed.append(path); }
    void bringToFront() override {}

    std::optional<QString> answer; // what the user picks in the next panels; nothing to cancel them
    QStringList asked;             // the proposed names and the titles of the panels shown
    QString pasteboard;
    QStringList revealed;
};
