#include "ChatReply.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace demo {

namespace {

constexpr std::string_view echoWord = "echo ";
constexpr std::string_view repeatWord = "repeat ";
constexpr std::size_t longestRepeat = 16 * 1024 * 1024;
constexpr std::size_t longestQuote = 60;

bool isInsideCharacter(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

std::optional<std::string> repeated(std::string_view text)
{
    if (!text.starts_with(repeatWord)) {
        return std::nullopt;
    }
    text.remove_prefix(repeatWord.size());
    std::size_t times = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), times);
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    if (problem != std::errc() || !text.starts_with(' ') || text.size() < 2) {
        return std::nullopt;
    }
    text.remove_prefix(1);
    times = std::min(times, longestRepeat / (text.size() + 1));
    std::string result;
    result.reserve(times * (text.size() + 1));
    for (std::size_t i = 0; i < times; ++i) {
        result.append(i == 0 ? "" : " ").append(text);
    }
    return result;
}

// One line, without what would act as markup, and short.
std::string quoted(const std::string &text)
{
    std::string line;
    for (const char c : text) {
        const bool space = c == ' ' || c == '\n' || c == '\r' || c == '\t';
        if (space && !line.empty() && line.back() != ' ') {
            line += ' ';
        } else if (!space && std::string_view("*_`#<>[]").find(c) == std::string_view::npos) {
            line += c;
        }
    }
    if (line.size() > longestQuote) {
        std::size_t end = longestQuote;
        while (end > 0 && isInsideCharacter(line[end])) {
            --end;
        }
        line = line.substr(0, end) + "…";
    }
    return "“" + line + "”";
}

std::string opening(const std::string &userText)
{
    const std::string introduction =
        "This is the demonstration engine speaking, so what follows is made up and no model was asked. ";
    if (userText.empty()) {
        return introduction + "Your message was empty.\n\n";
    }
    return introduction + "You wrote " + quoted(userText) + ".\n\n";
}

std::string aboutAnswers()
{
    return "A real model would now weigh your words one after another. I only show what an answer may look "
           "like:\n\n"
           "- plain sentences, which arrive **piece by piece**\n"
           "- lists such as this one, with *emphasis* where it helps\n"
           "- names from code such as `total_duration` in the middle of a line\n\n"
           "And a block of code, kept as it is:\n\n"
           "```python\n"
           "def greet(name):\n"
           "    return f\"Hello, {name}!\"\n\n"
           "print(greet(\"world\"))\n"
           "```\n\n"
           "Stop me at any time; what has arrived **stays**.";
}

std::string aboutSteps()
{
    return "## How to get a real answer\n\n"
           "1. Install the engine that this program was made for.\n"
           "2. Download a model that *fits your memory*.\n"
           "3. Ask the same question again.\n\n"
           "Until then, here is a small program that counts words, which is **about as much** as I "
           "understand of them:\n\n"
           "```cpp\n"
           "std::size_t words(std::istream &text)\n"
           "{\n"
           "    std::string word;\n"
           "    std::size_t count = 0;\n"
           "    while (text >> word) {\n"
           "        ++count;\n"
           "    }\n"
           "    return count;\n"
           "}\n"
           "```\n\n"
           "> The best stand-in is the one that says so.";
}

std::string aboutSpeed()
{
    return "Our conversation has grown, so I vary my form a little. Three things are worth watching while "
           "I speak:\n\n"
           "* the text, which follows its own **end** as it grows\n"
           "* the speed, measured in *tokens per second* once I am done\n"
           "* the list of models, which shows me ~~asleep~~ awake\n\n"
           "---\n\n"
           "The request behind this answer looked much like this:\n\n"
           "```json\n"
           "{\n"
           "  \"model\": \"demonstration\",\n"
           "  \"stream\": true\n"
           "}\n"
           "```\n\n"
           "That is all there is to say.";
}

} // namespace

std::string replyTo(const std::string &userText, int messageCount)
{
    if (userText.starts_with(echoWord)) {
        return userText.substr(echoWord.size());
    }
    if (const std::optional<std::string> text = repeated(userText)) {
        return *text;
    }
    // Every exchange adds two messages.
    switch ((std::max(messageCount, 1) - 1) / 2 % 3) {
    case 0:
        return opening(userText) + aboutAnswers();
    case 1:
        return opening(userText) + aboutSteps();
    default:
        return opening(userText) + aboutSpeed();
    }
}

std::string thoughtsAbout(const std::string &userText)
{
    if (userText.starts_with(echoWord)) {
        return "The user wants to hear their own words again.";
    }
    if (userText.starts_with(repeatWord)) {
        return "The user wants one word, many times over.";
    }
    return "Okay, the user wrote " + quoted(userText) +
           ". I am a stand-in and know nothing about it, but I can think aloud for a moment, so that the "
           "reasoning has something to show. First I should say who I am. Then a list, some emphasis and "
           "a block of code. That should do.";
}

std::vector<std::string_view> inPieces(std::string_view text, std::size_t bytes)
{
    std::vector<std::string_view> pieces;
    pieces.reserve(text.size() / bytes + 1);
    while (!text.empty()) {
        std::size_t end = std::min(text.size(), bytes);
        const std::size_t space = text.find_first_of(" \n", end);
        if (space != std::string_view::npos && space - end < bytes) {
            end = space + 1;
        }
        while (end < text.size() && isInsideCharacter(text[end])) {
            ++end;
        }
        pieces.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return pieces;
}

} // namespace demo
