#pragma once

// The words of the demonstration engine.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace demo {

// The answer to the user's last message. "echo …" and "repeat N word" are obeyed to the letter; anything
// else gets a demonstration of prose, a list, emphasis and code that varies with the number of messages.
std::string replyTo(const std::string &userText, int messageCount);
std::string thoughtsAbout(const std::string &userText);

// The text in pieces of about this many bytes, cut between words or at least between characters; the pieces
// point into the text.
std::vector<std::string_view> inPieces(std::string_view text, std::size_t bytes);

} // namespace demo
