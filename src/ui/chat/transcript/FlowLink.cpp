#include "ui/chat/transcript/FlowLink.h"

#include "ui/chat/transcript/StyledText.h"

FlowLink FlowLink::of(const StyledText &text, int row, int index)
{
    FlowLink link{row, index, {}, text.links[index]};
    for (const StyledText::Run &run : text.runs) {
        if (run.link == index)
            link.text += QStringView(text.text).sliced(run.start, run.length);
    }
    return link;
}
