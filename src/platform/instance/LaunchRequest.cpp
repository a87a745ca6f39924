#include "platform/instance/LaunchRequest.h"

#include <QList>

namespace {

// The words of a line: the wish, then token and id, of which an absent one is a colon alone.
const QByteArray newChatWord = "new-chat";
const QByteArray showWord = "show";

std::optional<LaunchRequest::Wish> wishOf(const QByteArray &word)
{
    if (word == newChatWord)
        return LaunchRequest::Wish::newChat;
    if (word == showWord)
        return LaunchRequest::Wish::show;
    return std::nullopt;
}

bool isField(const QByteArray &word)
{
    return word == ":" || (word.startsWith(':') && Activation::isValid(word.sliced(1)));
}

} // namespace

QByteArray LaunchRequest::encode() const
{
    return (wish == Wish::newChat ? newChatWord : showWord) + " :" + activation.token + " :" +
           activation.startupId + '\n';
}

std::optional<LaunchRequest> LaunchRequest::decode(const QByteArray &line)
{
    if (!line.endsWith('\n'))
        return std::nullopt;
    const QList<QByteArray> words = line.chopped(1).split(' ');
    const auto wish = wishOf(words.first());
    if (words.size() != 3 || !wish || !isField(words.at(1)) || !isField(words.at(2)))
        return std::nullopt;
    return LaunchRequest{*wish, {words.at(1).sliced(1), words.at(2).sliced(1)}};
}
