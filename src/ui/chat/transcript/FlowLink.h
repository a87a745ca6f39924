// A link in a text that is laid out in rows.
#pragma once

#include <QString>

#include <vector>

struct StyledText;

struct FlowLink
{
    int row = 0;
    int index = 0; // among the links of the row
    QString text;  // as it is shown
    QString target;

    static std::vector<FlowLink> all(const StyledText &text, int row);
    static FlowLink of(const StyledText &text, int row, int index);
};
