#pragma once

// The user's country code as the locale states it: the international
// dialling code of the locale's territory (1 for the United States, 44 for
// the United Kingdom), 0 when the territory has none known here.
int localeCountryCode();
