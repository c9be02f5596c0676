#pragma once

// Puts the status-type, due-back and column windows into the console's
// DialogRegistry, which offers their Add, Modify and Delete entries.
void registerCatalogueWindows();
