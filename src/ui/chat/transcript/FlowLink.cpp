#include "ui/chat/transcript/FlowLink.h"

#include "ui/chat/transcript/StyledText.h"

std::vector<FlowLink> FlowLink::all(const StyledText &text, int row)
{
    std::vector<FlowLink> links;
    for (int index = 0; index < text.links.size(); ++index)
        links.push_back({row, index, {}, text.links[index]});
    for (const StyledText::Run &run : text.runs) {
        if (run.link >= 0)
            links[static_cast<size_t>(run.link)].text += QStringView(text.text).sliced(run.start, run.length);
    }
    return links;
}

FlowLink FlowLink::of(const StyledText &text, int row, int index)
{
    return all(text, row)[static_cast<size_t>(index)];
}
