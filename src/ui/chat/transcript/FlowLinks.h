// The links of a flow that can be opened, for those who reach them without pointing at them.
#pragma once

#include "ui/chat/transcript/FlowLink.h"

#include <vector>

class TextFlow;

class FlowLinks
{
public:
    // The flow's rows from this one on have changed.
    void forgetFrom(int row);
    // From top to bottom; looks only at rows that it has not seen yet.
    const std::vector<FlowLink> &in(const TextFlow &flow);

private:
    std::vector<FlowLink> m_links;
    int m_seenRows = 0;
};
