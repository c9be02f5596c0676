#pragma once

#include <QString>

// Result codes of gintHandleUpdateError.
constexpr int RetryStatement = 4;
constexpr int GiveUp = 2;

// Collision protocol of the single-row writers (servers, due-back types):
// the first lock collision retries silently, the next asks the user.
int gintHandleUpdateError(int errorNumber, const QString &errorText);

// The shared retry counter, for tests.
int &gintRetryCount();
