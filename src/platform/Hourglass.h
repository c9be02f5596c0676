#pragma once

// The process-wide mouse pointer: 11 shows the hourglass, 0 the default.
// One switch, not a stack: setting 11 twice and 0 once gives the default back.
namespace Hourglass {
void set(int pointer);
bool shown();
}  // namespace Hourglass
