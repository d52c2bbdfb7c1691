#pragma once

// The plug-in's translations, embedded in the library.

#include <QLocale>

// Installs the plug-in's translations (embedded in the library) for `locale` on
// the running application. A second call replaces the translator of the first.
// Returns false when there is no application object or no translation for the
// locale; the texts then stay English.
bool installDialixTranslator(const QLocale &locale = QLocale::system());

// Takes the translator of installDialixTranslator() off the application again
// and deletes it. Its texts live in this library, so it must go before the
// library is unloaded. Does nothing when none is installed.
void removeDialixTranslator();
