#pragma once

// Window geometry is stored in twips (1440 to the inch); the screen's logical
// DPI turns them into pixels and back.
namespace Twips {
int toPixelsX(int twips);
int toPixelsY(int twips);
int fromPixelsX(int pixels);
int fromPixelsY(int pixels);
}  // namespace Twips
