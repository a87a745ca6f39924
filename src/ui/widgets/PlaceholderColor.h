// Keeps the hints in empty fields legible: some desktops with dark colours name none for them, and Qt then
// takes the one for light colours.
#pragma once

// From now on, and whenever the desktop's colours change.
void keepPlaceholdersLegible();
