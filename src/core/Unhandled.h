#pragma once

#include <functional>

class StoreError;

// A failure that the routine meeting it does not handle: the operation ends
// with one message naming the number and the store's text, and the console
// carries on. Event handlers run their work through guarded() so that no
// failure escapes into the event loop.
void reportUnhandled(const StoreError &e);
void guarded(const std::function<void()> &work);
