#include "ui/chat/transcript/FlowLinks.h"

#include "ui/chat/transcript/ParagraphLayout.h"
#include "ui/chat/transcript/TextFlow.h"

#include <algorithm>

namespace {

// Most lines have no link, which is told without interpreting them.
bool mayHoldLink(QStringView line)
{
    return line.contains(u"](") || line.contains(u'<');
}

} // namespace

void FlowLinks::forgetFrom(int row)
{
    m_seenRows = std::min(m_seenRows, row);
    while (!m_links.empty() && m_links.back().row >= row)
        m_links.pop_back();
}

const std::vector<FlowLink> &FlowLinks::in(const TextFlow &flow)
{
    for (; m_seenRows < flow.rowCount(); ++m_seenRows) {
        const bool isProse = flow.rows().row(m_seenRows).kind == FlowRows::Kind::prose;
        if (!isProse || !mayHoldLink(flow.rows().line(m_seenRows)))
            continue;
        for (FlowLink &link : FlowLink::all(flow.styledText(m_seenRows), m_seenRows)) {
            if (!link.text.isEmpty() && ParagraphLayout::isOpenable(link.target))
                m_links.push_back(std::move(link));
        }
    }
    return m_links;
}
