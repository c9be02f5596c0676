#pragma once

#include <QString>

// Pattern matching with the board's rules for `like`: `*` any run, `?` one
// character, `#` one digit, `[abc]` `[a-z]` `[!a-z]` character lists (so `[*]`
// is a literal star); letters compare without regard to case.
bool jetLike(const QString &text, const QString &pattern);
